// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "host/model/address.h"

namespace pciinfo {

/// The buses behind a bridge.
struct BridgeBuses {
  unsigned secondary = 0;    ///< the bus directly behind the bridge
  unsigned subordinate = 0;  ///< the highest bus behind the bridge
};

/// Reads them from the configuration space of a function; the first 64 bytes suffice. Returns
/// nothing if the function is not a PCI-to-PCI or CardBus bridge, or if the bridge is not
/// configured: the buses behind a configured bridge have higher numbers than its own bus.
std::optional<BridgeBuses> ParseBridgeBuses(const PciAddress& address,
                                            std::span<const std::uint8_t> configuration);

/// Reads them from the kernel's files for the function's configuration space. Returns nothing also
/// if no such file can be read. `root` is the directory to use as "/".
std::optional<BridgeBuses> ReadBridgeBuses(const PciAddress& address, const std::string& root = "");

}  // namespace pciinfo
