// SPDX-License-Identifier: Apache-2.0

// Hexadecimal numbers, and a function's address in the formats of different sources.
#include <algorithm>
#include <cctype>
#include <cstdio>

#include "fuzz/fuzz.h"
#include "fuzz/models.h"
#include "host/model/address.h"
#include "pci/address.h"
#include "pci/hardware_probe.h"
#include "plugin/values.h"

namespace {

using fuzz::PlainHex;
using fuzz::Require;

std::string DeviceKey(unsigned bus, unsigned device, unsigned function) {
  return "PCIBus" + std::to_string(bus) + "device" + std::to_string(device) + "function" +
         std::to_string(function);
}

bool IsHex(const std::string& text) {
  return !text.empty() && text.size() <= 8 &&
         std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isxdigit(c); });
}

// The function's digits; any text may follow that does not make them a prefix "0x".
std::string HexBeginning(const std::string& text) {
  const auto isHex = [](unsigned char c) { return std::isxdigit(c); };
  const auto end = std::find_if_not(text.begin(), text.end(), isHex);
  const bool isPrefix = end != text.end() && (*end == 'x' || *end == 'X');
  return isPrefix ? "" : std::string(text.begin(), end);
}

void CheckNumbers(const std::string& text) {
  Require(ExtractDecimalDataToHex<unsigned short>(text) == PlainHex<unsigned short>(text),
          "a 16-bit number is the one that a hexadecimal stream reads");
  Require(ExtractDecimalDataToHex<unsigned int>(text) == PlainHex<unsigned int>(text),
          "a 32-bit number is the one that a hexadecimal stream reads");
}

void CheckDeviceKey(const std::string& text) {
  const std::string key = DeviceKeyFromAddress(text);
  const std::size_t colon = text.find(':');
  const std::size_t dot = text.find('.');
  if (colon == std::string::npos || dot == std::string::npos || dot < colon) {
    return Require(key.empty(), "a text without \":\" and a later \".\" has no key");
  }
  const std::string bus = text.substr(0, colon);
  const std::string device = text.substr(colon + 1, dot - colon - 1);
  const std::string function = HexBeginning(text.substr(dot + 1));
  if (IsHex(bus) && IsHex(device) && IsHex(function)) {
    Require(key == DeviceKey(PlainHex<unsigned>(bus), PlainHex<unsigned>(device),
                             PlainHex<unsigned>(function)),
            "a key has the address' numbers in decimal");
  }
  unsigned long numbers[3];
  int end = 0;
  Require(std::sscanf(key.c_str(), "PCIBus%ludevice%lufunction%lu%n", &numbers[0], &numbers[1],
                      &numbers[2], &end) == 3 &&
              static_cast<std::size_t>(end) == key.size(),
          "a key has three decimal numbers");
}

void CheckLocationKey(const std::string& text) {
  std::string expected;
  for (const char c : text) {
    if (c != ' ' && c != ',') expected += c;
  }
  Require(DeviceKeyFromLocation(text) == expected, "blanks and commas are left out, nothing else");
}

void CheckProbedAddress(const std::string& output) {
  std::string last = output.substr(output.rfind('/') + 1);  // all of it if there is no slash
  last.erase(0, std::min<std::size_t>(last.size(), 5));
  Require(LastProbedAddress(output) == last,
          "the address is the text after the last slash and the domain");
}

// All texts of one address give the same key.
void CheckAddress(const PciAddress& address) {
  const std::string key = DeviceKey(address.bus, address.device, address.function);
  const std::string location = "PCI" + address.LegacyKey();
  Require(DeviceKeyFromAddress(address.ListingKey()) == key, "the listing's address gives the key");
  Require(DeviceKeyFromLocation(location) == key, "the location gives the key");
  Require(LastProbedAddress("/devices/pci0000:00/" + address.WithDomain()) == address.ListingKey(),
          "the probe's address is the listing's");
  const auto parsed = pciinfo::ParseLocation(location);
  const bool exists = address.device < 32 && address.function < 8;
  Require(parsed.has_value() == exists, "a location is one of a function that can be");
  if (parsed) Require(pciinfo::FormatAddress(*parsed) == address.ListingKey(), "and leads back");
}

void CheckLocation(const std::string& text) {
  const auto parsed = pciinfo::ParseLocation(text);
  if (!parsed) return;
  Require(parsed->bus < 256 && parsed->device < 32 && parsed->function < 8, "numbers are in range");
  // Leading zeros are not part of a number.
  unsigned numbers[3] = {256, 256, 256};
  int end = 0;
  const std::string plain = DeviceKeyFromLocation(text);
  const int count = std::sscanf(plain.c_str(), "PCIBus%udevice%ufunction%u%n", &numbers[0],
                                &numbers[1], &numbers[2], &end);
  Require(count == 3 && static_cast<std::size_t>(end) == plain.size(),
          "a location that is read is well formed");
  Require(
      numbers[0] == parsed->bus && numbers[1] == parsed->device && numbers[2] == parsed->function,
      "its numbers are those that are read");
}

}  // namespace

void fuzz::CheckInput(std::string_view input) {
  Pieces pieces(input);
  const std::uint8_t bus = pieces.Byte();
  const std::uint8_t device = pieces.Byte();
  CheckAddress({bus, device, pieces.Byte()});
  Pieces lines(input);
  while (!lines.IsEmpty()) {
    const std::string line(lines.Until('\n'));
    CheckNumbers(line);
    CheckDeviceKey(line);
    CheckLocationKey(line);
    CheckLocation(line);
  }
  CheckProbedAddress(std::string(input));
}
