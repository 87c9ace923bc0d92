// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vtq {

/// Bytes of SMBIOS tables for tests.
using SmBiosBytes = std::vector<std::uint8_t>;

/// Sets the byte at `checksum` so that the `length` bytes from `start` on add up to zero.
inline void Seal(SmBiosBytes& bytes, std::size_t start, std::size_t length, std::size_t checksum) {
  bytes[checksum] = 0;
  unsigned sum = 0;
  for (std::size_t index = start; index < start + length; ++index) sum += bytes[index];
  bytes[checksum] = static_cast<std::uint8_t>(0U - sum);
}

inline void PutText(SmBiosBytes& bytes, std::size_t offset, const std::string& text) {
  for (const char character : text) bytes[offset++] = static_cast<std::uint8_t>(character);
}

inline void PutU16(SmBiosBytes& bytes, std::size_t offset, std::size_t number) {
  bytes[offset] = static_cast<std::uint8_t>(number);
  bytes[offset + 1] = static_cast<std::uint8_t>(number >> 8);
}

/// A `_SM_` entry point.
inline SmBiosBytes MakeVersion2Entry(int major, int minor, std::size_t tableLength,
                                     std::size_t count) {
  SmBiosBytes bytes(0x1F);
  PutText(bytes, 0, "_SM_");
  bytes[0x05] = 0x1F;
  bytes[0x06] = static_cast<std::uint8_t>(major);
  bytes[0x07] = static_cast<std::uint8_t>(minor);
  PutText(bytes, 0x10, "_DMI_");
  PutU16(bytes, 0x16, tableLength);
  PutU16(bytes, 0x1C, count);
  bytes[0x1E] = 0x27;
  Seal(bytes, 0x10, 0x0F, 0x15);
  Seal(bytes, 0, 0x1F, 0x04);
  return bytes;
}

/// A `_SM3_` entry point.
inline SmBiosBytes MakeVersion3Entry(int major, int minor, std::size_t tableLength) {
  SmBiosBytes bytes(0x18);
  PutText(bytes, 0, "_SM3_");
  bytes[0x06] = 0x18;
  bytes[0x07] = static_cast<std::uint8_t>(major);
  bytes[0x08] = static_cast<std::uint8_t>(minor);
  bytes[0x0A] = 0x01;
  PutU16(bytes, 0x0C, tableLength);
  PutU16(bytes, 0x0E, tableLength >> 16);
  Seal(bytes, 0, 0x18, 0x05);
  return bytes;
}

/// A bare `_DMI_` entry point.
inline SmBiosBytes MakeLegacyEntry(int revision, std::size_t tableLength, std::size_t count) {
  SmBiosBytes bytes(0x0F);
  PutText(bytes, 0, "_DMI_");
  PutU16(bytes, 0x06, tableLength);
  PutU16(bytes, 0x0C, count);
  bytes[0x0E] = static_cast<std::uint8_t>(revision);
  Seal(bytes, 0, 0x0F, 0x05);
  return bytes;
}

/// A structure: header, the bytes after the header, strings, and the zero bytes at the end.
inline SmBiosBytes MakeStructure(int type, const SmBiosBytes& body,
                                 const std::vector<std::string>& strings = {}) {
  SmBiosBytes bytes = {static_cast<std::uint8_t>(type), static_cast<std::uint8_t>(4 + body.size()),
                       0x34, 0x12};
  bytes.insert(bytes.end(), body.begin(), body.end());
  for (const std::string& text : strings) {
    bytes.insert(bytes.end(), text.begin(), text.end());
    bytes.push_back(0);
  }
  if (strings.empty()) bytes.push_back(0);
  bytes.push_back(0);
  return bytes;
}

inline SmBiosBytes Joined(const std::vector<SmBiosBytes>& parts) {
  SmBiosBytes bytes;
  for (const SmBiosBytes& part : parts) bytes.insert(bytes.end(), part.begin(), part.end());
  return bytes;
}

/// The first `length` bytes, in memory of exactly that size, so that sanitizers detect reads past
/// the end.
inline SmBiosBytes CutTo(const SmBiosBytes& bytes, std::size_t length) {
  return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)};
}

}  // namespace vtq
