#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// A slot structure (SMBIOS type 9) as dmidecode prints it. A text is empty where dmidecode does
/// not print that line: it prints what the structure's length holds.
struct DecodedSlot {
  std::string designation;
  std::string usage;
  std::string id;
  std::string peers;
  std::vector<std::string> characteristics;
  std::vector<std::uint8_t> bytes;  ///< the structure with its strings

  std::uint8_t Byte(std::size_t offset) const { return offset < bytes.size() ? bytes[offset] : 0; }
  std::int8_t SignedByte(std::size_t offset) const {
    return static_cast<std::int8_t>(Byte(offset));
  }
};

/// The slot structures of this machine in table order; none where it has no SMBIOS.
std::vector<DecodedSlot> DecodeSlots();
