// SPDX-License-Identifier: Apache-2.0
#include "topology/address.h"

#include <array>
#include <charconv>

namespace topology {
namespace {

/// Reads a hexadecimal number of at least `least` and at most `most` digits from the front of
/// `text` and removes it.
std::optional<std::uint32_t> TakeHex(std::string_view& text, std::size_t least, std::size_t most) {
  std::uint32_t number = 0;
  const char* const end = text.data() + std::min(text.size(), most);
  const auto [stop, error] = std::from_chars(text.data(), end, number, 16);
  const auto digits = static_cast<std::size_t>(stop - text.data());
  if (error != std::errc() || digits < least) return std::nullopt;
  text.remove_prefix(digits);
  return number;
}

bool TakeCharacter(std::string_view& text, char character) {
  if (!text.starts_with(character)) return false;
  text.remove_prefix(1);
  return true;
}

/// Reads "DDDD:BB:DD" from the front of `text` and removes it.
std::optional<Address> TakeDevice(std::string_view& text) {
  const auto domain = TakeHex(text, 4, 8);
  if (!domain || !TakeCharacter(text, ':')) return std::nullopt;
  const auto bus = TakeHex(text, 2, 2);
  if (!bus || !TakeCharacter(text, ':')) return std::nullopt;
  const auto device = TakeHex(text, 2, 2);
  if (!device || *device > 0x1F) return std::nullopt;
  return Address{*domain, static_cast<std::uint8_t>(*bus), static_cast<std::uint8_t>(*device), 0};
}

/// Appends a number with at least `digits` digits.
void AppendHex(std::string& text, std::uint32_t number, std::size_t digits) {
  std::array<char, 8> buffer{};
  const char* const end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, 16).ptr;
  const auto size = static_cast<std::size_t>(end - buffer.data());
  if (size < digits) text.append(digits - size, '0');
  text.append(buffer.data(), size);
}

}  // namespace

bool IsSameDevice(const Address& left, const Address& right) {
  return left.domain == right.domain && left.bus == right.bus && left.device == right.device;
}

std::string ToText(const Address& address) {
  std::string text;
  AppendHex(text, address.domain, 4);
  AppendHex(text += ':', address.bus, 2);
  AppendHex(text += ':', address.device, 2);
  AppendHex(text += '.', address.function & 7U, 1);
  return text;
}

std::optional<Address> ParseAddress(std::string_view text) {
  std::optional<Address> address = TakeDevice(text);
  if (!address || !TakeCharacter(text, '.')) return std::nullopt;
  const auto function = TakeHex(text, 1, 1);
  if (!function || *function > 7 || !text.empty()) return std::nullopt;
  address->function = static_cast<std::uint8_t>(*function);
  return address;
}

std::optional<Address> ParseDeviceAddress(std::string_view text) {
  const std::optional<Address> address = TakeDevice(text);
  return text.empty() ? address : std::nullopt;
}

}  // namespace topology
