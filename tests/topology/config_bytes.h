// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include "topology/config_space.h"

namespace topology {

/// Configuration space whose bytes a test sets.
class Bytes {
 public:
  explicit Bytes(std::size_t size) : bytes_(size, '\0') {}

  Bytes& Put(std::size_t offset, std::uint64_t value, int size = 1) {
    for (int i = 0; i < size; ++i) {
      bytes_.at(offset + static_cast<std::size_t>(i)) = static_cast<char>(value >> 8 * i);
    }
    return *this;
  }
  /// A list of capabilities begins at `first`.
  Bytes& List(std::size_t first) { return Put(0x06, 0x10, 2).Put(0x34, first); }

  ConfigSpace Get() const { return ConfigSpace(bytes_); }
  const std::string& Text() const { return bytes_; }

 private:
  std::string bytes_;
};

}  // namespace topology
