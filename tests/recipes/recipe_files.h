// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace recipe {

using Bytes = std::vector<std::uint8_t>;

/// Writes a file and creates its directories. Throws std::runtime_error.
inline void WriteFile(const std::filesystem::path& path, const std::string& content) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  file << content << std::flush;
  if (!file) throw std::runtime_error("cannot write " + path.string());
}

inline std::string AsText(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

/// Writes `value` at `offset`, little-endian, in `size` bytes.
inline void Put(Bytes& bytes, std::size_t offset, std::uint64_t value, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    bytes.at(offset + i) = static_cast<std::uint8_t>(value >> (8 * i));
  }
}

}  // namespace recipe
