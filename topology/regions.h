// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace topology {

/// A region of a function's base addresses, its expansion ROM or a window of a bridge, as the
/// kernel lists it.
struct Region {
  unsigned number = 0;  ///< of the base address; 6 is the expansion ROM, more are windows
  std::uint64_t start = 0;
  std::uint64_t size = 0;
  std::uint64_t flags = 0;  ///< IORESOURCE_* bits of the kernel

  /// "memory", "I/O", "expansion ROM", "memory window" or "I/O window".
  std::string GetKind() const;
  bool IsPrefetchable() const noexcept;
  bool Is64Bit() const noexcept;
};

/// The regions that a `resource` file lists: one line each with first byte, last byte and flags.
/// Lines of zeros are regions that do not exist.
std::vector<Region> ParseResources(std::string_view text);

}  // namespace topology
