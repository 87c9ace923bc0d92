// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "topology/address.h"
#include "topology/config_facts.h"

namespace topology {

/// One PCI function: what a list of functions tells, and what it takes to place them. The rest is
/// read when somebody asks for it, see function_details.h.
struct Function {
  Address address;
  ConfigFacts config;
  std::string driver;                           ///< empty: none
  std::optional<int> numaNode;                  ///< unknown on machines without NUMA
  std::string label;                            ///< that the firmware gives it; empty: none
  std::optional<std::uint64_t> slotUserNumber;  ///< ACPI _SUN of its own node
  std::optional<Address> physicalFunction;      ///< of a virtual function
};

/// A slot that the kernel knows, a directory of /sys/bus/pci/slots.
struct KernelSlot {
  std::string name;
  Address device;  ///< the device in the slot, or the port's own; its function number is 0
  // What its driver tells; unknown for slots that the kernel cannot switch.
  std::optional<unsigned> power = {};      ///< 0: off
  std::optional<unsigned> attention = {};  ///< 0: off, 1: on, 2: blinking
  std::optional<unsigned> latch = {};      ///< 0: closed
  std::optional<unsigned> adapter = {};    ///< 0: there is no card
};

/// A slot record of the firmware: SMBIOS type 9 (DSP0134, 7.10).
struct SlotRecord {
  std::uint16_t handle = 0;
  std::string designation;         ///< without blanks around it
  std::uint8_t type = 0;           ///< 7.10.1
  std::uint8_t width = 0;          ///< 7.10.2
  std::uint8_t usage = 0;          ///< 7.10.3
  std::uint8_t length = 0;         ///< 7.10.4
  std::uint16_t id = 0;            ///< 7.10.5
  bool hotPlug = false;            ///< 7.10.7
  std::optional<Address> address;  ///< 7.10.8; older records have none
  std::vector<Address> peers;      ///< 7.10.9
};

/// A board of the firmware: SMBIOS type 2 (7.3), of which the slots are.
struct BoardRecord {
  std::string product;
  std::vector<std::uint16_t> contained;  ///< handles of the records of its parts
};

/// An onboard device of the firmware: SMBIOS type 41 (7.42).
struct OnBoardRecord {
  std::uint16_t handle = 0;
  std::string designation;
  bool enabled = false;
  Address address;
};

/// Everything that the resolver needs to know of a machine.
struct Machine {
  std::vector<Function> functions;  ///< sorted by address
  std::vector<KernelSlot> kernelSlots;
  std::vector<SlotRecord> slotRecords;
  std::vector<OnBoardRecord> onBoardRecords;
  std::vector<BoardRecord> boardRecords;
  /// Why the slot records could not be read; empty when they could.
  std::string noRecordsBecause;
};

}  // namespace topology
