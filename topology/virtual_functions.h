// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>

#include "topology/config_space.h"

namespace topology {

/// Single root I/O virtualization of a physical function (PCI Express 5.0, 9.3.3).
struct VirtualFunctions {
  std::uint16_t total = 0;        ///< that the function can have
  std::uint16_t enabled = 0;      ///< that answer now
  std::uint16_t firstOffset = 0;  ///< from the function's routing ID to that of the first one
  std::uint16_t stride = 0;       ///< from one to the next
  std::uint16_t deviceId = 0;
};

/// Decodes the capability that begins at `at`; nothing if it does not fit into the bytes.
std::optional<VirtualFunctions> DecodeVirtualFunctions(const ConfigSpace& config, std::size_t at);

}  // namespace topology
