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

/// What an address in a firmware record means. `source` begins the evidence: "SMBIOS record
/// 0x0046".
///
/// Firmware names the port, the card, the card with another function number, a device that the link
/// cannot hold, or a place that does not exist.
Target TargetOfAddress(const BusTree& tree, const Address& address, const std::string& source);

/// What the address of a kernel slot means: the place below a port, or the port itself.
Target TargetOfKernelSlot(const BusTree& tree, const KernelSlot& slot);

/// "SMBIOS record 0x0046".
std::string RecordText(const SlotRecord& record);

/// Whether the record is of a conventional PCI or PCI-X slot (DSP0134, 7.10.1).
bool IsConventional(const SlotRecord& record);

/// The bridge to a conventional bus that stands on the link below `port`, if there is one.
std::optional<std::size_t> ConventionalBridgeBehind(const BusTree& tree, std::size_t port);

}  // namespace topology
