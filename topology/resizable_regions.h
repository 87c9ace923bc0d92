// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "topology/config_space.h"

namespace topology {

/// A region whose size can be chosen (PCI Express 5.0, 7.8.6).
struct ResizableRegion {
  std::uint8_t number = 0;           ///< of the base address
  std::uint64_t size = 0;            ///< now, in bytes
  std::vector<std::uint64_t> sizes;  ///< that it can have, in bytes, ascending
};

/// Decodes the capability that begins at `at`: one to six regions.
std::vector<ResizableRegion> DecodeResizableRegions(const ConfigSpace& config, std::size_t at);

/// "256 MiB", "16 GiB", ...: a power of two of at least 1 MiB.
std::string SizeText(std::uint64_t bytes);

}  // namespace topology
