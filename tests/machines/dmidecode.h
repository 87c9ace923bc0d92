// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// A slot structure (SMBIOS type 9) as dmidecode prints it. A text is empty if dmidecode does not
/// print that line, because the structure is too short for it.
struct DecodedSlot {
  std::string designation;
  std::string usage;
  std::string id;
  std::string peers;
  std::vector<std::string> characteristics;
  std::vector<std::uint8_t> bytes;  ///< the bytes of the structure with its strings

  std::uint8_t Byte(std::size_t offset) const { return offset < bytes.size() ? bytes[offset] : 0; }
  std::int8_t SignedByte(std::size_t offset) const {
    return static_cast<std::int8_t>(Byte(offset));
  }
};

/// Returns the slot structures of this machine in table order; none if it has no SMBIOS.
std::vector<DecodedSlot> DecodeSlots();
