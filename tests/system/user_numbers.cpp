// SPDX-License-Identifier: Apache-2.0
#include "tests/system/user_numbers.h"

#include <cstdint>
#include <cstdio>
#include <stdexcept>

namespace {

// The language of ACPI tables (ACPI 6.4, 20.2).
constexpr char kScope = 0x10;
const std::string kDevice = "\x5B\x82";
constexpr char kName = 0x08;
constexpr char kDword = 0x0C;
const std::string kFirstRootBus = "\\\x2E_SB_PCI0";

/// The package length counts itself: two bytes, four bits in the first and eight in the second.
std::string Package(const std::string& content) {
  const std::size_t size = content.size() + 2;
  return {std::string{static_cast<char>(0x40 | (size & 0xF)), static_cast<char>(size >> 4)} +
          content};
}

std::string Name(const char* name, std::uint32_t value) {
  std::string bytes = kName + std::string(name) + kDword;
  for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<char>(value >> 8 * i));
  return bytes;
}

std::string Device(const std::string& address, std::uint32_t number) {
  unsigned device = 0;
  unsigned function = 0;
  if (std::sscanf(address.c_str(), "%2x.%1x", &device, &function) != 2) {
    throw std::runtime_error("not a device and function: " + address);
  }
  char name[8];
  std::snprintf(name, sizeof name, "N%02X%X", device & 0x1F, function & 7);
  return kDevice + Package(name + Name("_ADR", device << 16 | function) + Name("_SUN", number));
}

}  // namespace

std::string MakeUserNumberTable(const nlohmann::json& numbers) {
  std::string devices;
  for (const auto& [address, number] : numbers.items()) devices += Device(address, number);
  return kScope + Package(kFirstRootBus + devices);
}
