// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "topology/bus_tree.h"
#include "topology/slots.h"

namespace topology {

/// Whether the function is a bridge below which a link leads to a single device. For users who see
/// no capabilities it is concluded from the devices that are there.
bool LeadsToOneDevice(const BusTree& tree, std::size_t function);

/// Whether slot records name this function to mean what is behind it: a root port, a downstream
/// port, or a conventional bridge of a root bus.
bool IsPort(const BusTree& tree, std::size_t function);

/// Host bridges, memory controllers, system peripherals, processors, SMBus controllers and signal
/// processors (PCI Code and ID Assignment, 1) on a root bus are parts of the chip set. Records that
/// name them are left over from a template.
bool IsChipsetClass(const Function& function);

/// Whether the bus belongs to a root complex of PCI Express. Its slots are behind its ports, so
/// what stands on the bus itself is soldered, unless the firmware tells of conventional slots
/// there. A host that has only endpoints there, as emulated machines do, may have slots for them.
bool IsRootComplexBus(const BusTree& tree, const Address& address);

/// What an address in a firmware record means. `source` begins the evidence: "SMBIOS record
/// 0x0046".
///
/// Firmware names the port, the card, the card with another function number, a device that the link
/// cannot hold, or a place that does not exist.
Target TargetOfAddress(const BusTree& tree, const Address& address, const std::string& source);

/// What the address of a kernel slot means: the place below a port, or the port itself.
Target TargetOfKernelSlot(const BusTree& tree, const KernelSlot& slot);

/// The number that a kernel slot is named by; "-1" at the end tells slots with one number apart.
std::optional<std::uint64_t> NumberOf(const KernelSlot& slot);

/// What the slot user number means that ACPI gives a function: the place that it names, which is
/// likely at most. On a root bus it means nothing for users who see no capabilities, because they
/// cannot tell a conventional one from a root complex, nor where the chip set is numbered too.
Target TargetOfUserNumber(const BusTree& tree, std::size_t function);

/// "SMBIOS record 0x0046".
std::string RecordText(const SlotRecord& record);

/// A conventional card cannot sit on a link, but on the bus of a bridge at its end: moves the
/// target of a record of a conventional slot there. Returns false where there is no such bridge.
/// Other cards cannot sit on the bus of a root complex: such a target becomes none.
bool FitToRecord(const BusTree& tree, const SlotRecord& record, Target& target);

}  // namespace topology
