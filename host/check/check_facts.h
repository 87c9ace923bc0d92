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

/// A slot record (SMBIOS 7.10) of at least this length holds the address of its slot, and at most
/// so many peers are read of one.
inline constexpr unsigned kLengthWithAddress = 17;
inline constexpr unsigned kMostPeers = 8;

/// A PCI function's address on a machine with more than one PCI domain.
struct FullAddress {
  unsigned domain = 0;
  PciAddress address;

  friend auto operator<=>(const FullAddress&, const FullAddress&) = default;
};

/// "00:1f.3" in domain 0, "10000:00:1f.3" in others.
std::string FormatFullAddress(const FullAddress& address);

struct VendorAndDevice {
  unsigned vendor = 0;
  unsigned device = 0;

  friend bool operator==(const VendorAndDevice&, const VendorAndDevice&) = default;
};

inline constexpr std::size_t kRegions = 6;

/// A line of /proc/bus/pci/devices, which has no domain.
struct ListedFunction {
  PciAddress address;
  VendorAndDevice ids;
  /// Of the base address registers, with the flag bits in their low ends, and their sizes.
  std::array<std::uint64_t, kRegions> bases{};
  std::array<std::uint64_t, kRegions> sizes{};
};

/// What the folders of /sys/bus/pci/devices and of /proc/bus/pci say of a function.
struct KernelFunction {
  std::optional<VendorAndDevice> ids;
  std::array<bool, kRegions> isIo{};  ///< regions in I/O space
};

/// The beginning of a configuration file below /proc/bus/pci.
struct ConfigStart {
  VendorAndDevice ids;
  bool isHeaderOnly = false;  ///< nothing can be read behind the first 64 bytes
};

/// A function as it was published.
struct PublishedFunction {
  PciFunction function;
  std::optional<unsigned> slotNumber;  ///< "UINumber"
};

struct SlotPeer {
  unsigned segment = 0;
  unsigned bus = 0;
};

/// The numbers of an SMBIOS slot record (DSP0134 7.10) that tell which functions sit in the slot.
struct SlotRecord {
  unsigned length = 0;  ///< of the record; one of 16 and less has no address
  unsigned usage = 0;
  unsigned segment = 0;
  PciAddress address;
  unsigned peerCount = 0;
  std::vector<SlotPeer> peers;  ///< the first eight at most
};

/// What can be read of the firmware's slot records.
struct SlotRecords {
  NQZMVTQ20::TVTQStatusCode::EVTQStatusCode opened = NQZMVTQ20::TVTQStatusCode::kSuccess;
  /// The version of the tables has slot addresses, and the first record has one: functions carry
  /// the running numbers of slots.
  bool tellAddresses = false;
  std::vector<SlotRecord> records;
};

/// What the doubts about a published inventory are derived from.
struct CheckFacts {
  bool isCapture = false;

  std::vector<PublishedFunction> published;
  SlotsModel slots;

  bool hasPciBus = false;  ///< /proc/bus/pci or /sys/bus/pci/devices is there
  bool hasSysfs = false;   ///< /sys/bus/pci/devices is there
  std::optional<std::vector<ListedFunction>> list;  ///< no value: it cannot be read
  std::map<FullAddress, KernelFunction> functions;
  /// Of the listed addresses whose configuration can be read, in domain 0.
  std::map<PciAddress, ConfigStart> configurations;
  std::string listingFailure;  ///< why lspci gives no listing; empty when it does
  SlotRecords slotRecords;
};

/// The lines of the kernel's list; none where it cannot be read.
inline const std::vector<ListedFunction>& ListOf(const CheckFacts& facts) {
  static const std::vector<ListedFunction> none;
  return facts.list ? *facts.list : none;
}

/// Finds published functions by address. The facts must outlive it, unchanged.
class PublishedIndex final {
 public:
  explicit PublishedIndex(const CheckFacts& facts) {
    for (const PublishedFunction& published : facts.published) {
      if (published.function.address) byAddress_.emplace(*published.function.address, &published);
    }
  }

  /// Null when nothing is published for the address.
  const PublishedFunction* Find(const PciAddress& address) const {
    const auto found = byAddress_.find(address);
    return found == byAddress_.end() ? nullptr : found->second;
  }
  /// The path of the instance; empty when nothing is published for the address.
  std::string PathOf(const PciAddress& address) const {
    const PublishedFunction* published = Find(address);
    return published == nullptr ? "" : published->function.path;
  }

 private:
  std::map<PciAddress, const PublishedFunction*> byAddress_;
};

}  // namespace pciinfo
