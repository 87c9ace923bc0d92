// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "framework/exception.h"

namespace vtq {

/// Reads little-endian numbers from firmware bytes, which it does not own. Reading past the end
/// throws TVTQException (kCorruptData).
class ByteReader final {
 public:
  explicit ByteReader(std::span<const std::uint8_t> bytes) noexcept : bytes_(bytes) {}

  std::size_t GetSize() const noexcept { return bytes_.size(); }

  /// Whether there are `count` bytes at `offset`.
  bool Holds(std::size_t offset, std::size_t count) const noexcept {
    return offset <= bytes_.size() && count <= bytes_.size() - offset;
  }

  /// Whether the bytes at `offset` are those of `text`.
  bool HasText(std::size_t offset, std::string_view text) const noexcept {
    return Holds(offset, text.size()) &&
           std::equal(text.begin(), text.end(),
                      bytes_.begin() + static_cast<std::ptrdiff_t>(offset),
                      [](char character, std::uint8_t byte) {
                        return static_cast<std::uint8_t>(character) == byte;
                      });
  }

  std::span<const std::uint8_t> Slice(std::size_t offset, std::size_t count) const {
    if (Holds(offset, count)) return bytes_.subspan(offset, count);
    throw NQZMVTQ20::TVTQException("bytes " + std::to_string(offset) + " to " +
                                       std::to_string(offset + count) + " reach past the end, " +
                                       std::to_string(bytes_.size()),
                                   NQZMVTQ20::TVTQStatusCode::kCorruptData);
  }

  std::uint8_t U8(std::size_t offset) const { return Slice(offset, 1)[0]; }
  std::uint16_t U16(std::size_t offset) const {
    const std::span<const std::uint8_t> bytes = Slice(offset, 2);
    return static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
  }
  std::uint32_t U32(std::size_t offset) const {
    return static_cast<std::uint32_t>(U16(offset)) | static_cast<std::uint32_t>(U16(offset + 2))
                                                         << 16;
  }

 private:
  std::span<const std::uint8_t> bytes_;
};

}  // namespace vtq
