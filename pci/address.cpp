// SPDX-License-Identifier: Apache-2.0
#include "pci/address.h"

#include <algorithm>
#include <cstdlib>

namespace {

std::string HexToDecimal(std::string_view digits) {
  return std::to_string(std::strtoul(std::string(digits).c_str(), nullptr, 16));
}

constexpr char kHexDigits[] = "0123456789abcdef";

std::string HexDigits(std::uint8_t value) {
  return value < 16 ? std::string(1, kHexDigits[value]) : TwoHexDigits(value);
}

}  // namespace

std::string TwoHexDigits(std::uint8_t value) {
  return {kHexDigits[value / 16], kHexDigits[value % 16]};
}

std::string PciAddress::ListingKey() const {
  return TwoHexDigits(bus) + ':' + TwoHexDigits(device) + '.' + HexDigits(function);
}

std::string PciAddress::LegacyKey() const {
  std::string key;
  key.reserve(sizeof " Bus 255, device 255, function 255");
  key.append(" Bus ").append(PadDecimal(bus, 2));
  key.append(", device ").append(PadDecimal(device, 3));
  key.append(", function ").append(PadDecimal(function, 2));
  return key;
}

std::string PciAddress::WithDomain() const { return "0000:" + ListingKey(); }

std::string PadDecimal(int value, unsigned width) {
  std::string text = std::to_string(value);
  if (text.size() < width) text.insert(0, width - text.size(), ' ');
  return text;
}

std::string DeviceKeyFromAddress(std::string_view address) {
  const std::size_t colon = address.find(':');
  const std::size_t dot = address.find('.');
  if (colon == std::string_view::npos || dot == std::string_view::npos || dot < colon) return "";
  return "PCIBus" + HexToDecimal(address.substr(0, colon)) + "device" +
         HexToDecimal(address.substr(colon + 1, dot - colon - 1)) + "function" +
         HexToDecimal(address.substr(dot + 1));
}

std::string DeviceKeyFromLocation(std::string location) {
  const auto isPadding = [](char c) { return c == ' ' || c == ','; };
  location.erase(std::remove_if(location.begin(), location.end(), isPadding), location.end());
  return location;
}
