// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "framework/status_code.h"
#include "host/model/slots_model.h"

namespace pciinfo {

/// A slot record (SMBIOS 7.10) of at least this length contains the address of its slot; at most
/// this many peers of a record are read.
inline constexpr unsigned kLengthWithAddress = 17;
inline constexpr unsigned kMaxPeers = 8;

/// The address of a PCI function, with its PCI domain.
struct FullAddress {
  unsigned domain = 0;
  PciAddress address;

  friend auto operator<=>(const FullAddress&, const FullAddress&) = default;
};

/// Returns "00:1f.3" in domain 0, "10000:00:1f.3" in others.
std::string FormatFullAddress(const FullAddress& address);

struct VendorAndDevice {
  unsigned vendor = 0;
  unsigned device = 0;

  friend bool operator==(const VendorAndDevice&, const VendorAndDevice&) = default;
};

inline constexpr std::size_t kRegions = 6;

/// A line of /proc/bus/pci/devices, which does not name the domain.
struct ListedFunction {
  PciAddress address;
  VendorAndDevice ids;
  /// The base address registers, including their low flag bits, and the sizes of their regions.
  std::array<std::uint64_t, kRegions> bases{};
  std::array<std::uint64_t, kRegions> sizes{};
};

/// A function in the directories /sys/bus/pci/devices or /proc/bus/pci.
struct KernelFunction {
  std::optional<VendorAndDevice> ids;
  std::array<bool, kRegions> isIo{};  ///< regions in I/O space
};

/// The beginning of a configuration file below /proc/bus/pci.
struct ConfigStart {
  VendorAndDevice ids;
  bool isHeaderOnly = false;  ///< only the first 64 bytes can be read
};

/// A published function.
struct PublishedFunction {
  PciFunction function;
  std::optional<unsigned> slotNumber;  ///< "UINumber"
};

struct SlotPeer {
  unsigned segment = 0;
  unsigned bus = 0;
};

/// The fields of an SMBIOS slot record (DSP0134 7.10) that assign functions to the slot.
struct SlotRecord {
  unsigned length = 0;  ///< of the record; records of up to 16 bytes have no address
  unsigned usage = 0;
  unsigned segment = 0;
  PciAddress address;
  unsigned peerCount = 0;
  std::vector<SlotPeer> peers;  ///< at most the first eight
};

/// The firmware's slot records, as far as they can be read.
struct SlotRecords {
  NQZMVTQ20::TVTQStatusCode::EVTQStatusCode opened = NQZMVTQ20::TVTQStatusCode::kSuccess;
  /// Whether the version of the tables has slot addresses and the first record has one. Functions
  /// are then assigned to slots by running number, otherwise by slot ID.
  bool haveAddresses = false;
  std::vector<SlotRecord> records;
};

/// The input of all checks.
struct ClassFacts {
  bool isCapture = false;

  std::vector<PublishedFunction> published;
  SlotsModel slots;

  bool hasPciBus = false;  ///< /proc/bus/pci or /sys/bus/pci/devices exists
  bool hasSysfs = false;   ///< /sys/bus/pci/devices exists
  std::optional<std::vector<ListedFunction>> list;  ///< empty if it cannot be read
  std::map<FullAddress, KernelFunction> functions;
  /// By address in domain 0, for the listed functions whose configuration space can be read.
  std::map<PciAddress, ConfigStart> configurations;
  std::string listingFailure;  ///< why lspci gives no listing; empty if it gives one
  SlotRecords slotRecords;
};

/// The lines of the kernel's list; none if it cannot be read.
inline const std::vector<ListedFunction>& ListOf(const ClassFacts& facts) {
  static const std::vector<ListedFunction> none;
  return facts.list ? *facts.list : none;
}

}  // namespace pciinfo
