#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "host/model/address.h"

namespace pciinfo {

/// The buses behind a bridge.
struct BridgeBuses {
  unsigned secondary = 0;    ///< the bus right behind it
  unsigned subordinate = 0;  ///< the highest bus behind it
};

/// Reads them from the configuration space of a function, of which the first 64 bytes suffice. No
/// value for one that is no PCI-to-PCI or CardBus bridge, and for a bridge that nobody has set up:
/// the buses behind a bridge have higher numbers than its own.
std::optional<BridgeBuses> ParseBridgeBuses(const PciAddress& address,
                                            std::span<const std::uint8_t> configuration);

/// The same from the files in which the kernel shows the function's configuration space; no value
/// as well when none of them can be read. `root` is the folder that stands for "/".
std::optional<BridgeBuses> ReadBridgeBuses(const PciAddress& address, const std::string& root = "");

}  // namespace pciinfo
