// SPDX-License-Identifier: Apache-2.0
#include "host/model/address.h"

#include <fmt/compile.h>

#include <charconv>

namespace pciinfo {
namespace {

/// Removes `label`, blanks and a decimal number up to `highest` from the front of `text`.
std::optional<unsigned> TakeNumber(std::string_view& text, std::string_view label,
                                   unsigned highest) {
  if (!text.starts_with(label)) return std::nullopt;
  text.remove_prefix(label.size());
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  unsigned number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || number > highest) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return number;
}

}  // namespace

std::optional<PciAddress> ParseLocation(std::string_view location) {
  const std::optional<unsigned> bus = TakeNumber(location, "PCI Bus ", 255);
  const std::optional<unsigned> device = TakeNumber(location, ", device ", 31);
  const std::optional<unsigned> function = TakeNumber(location, ", function ", 7);
  if (!bus || !device || !function || !location.empty()) return std::nullopt;
  return PciAddress{*bus, *device, *function};
}

std::optional<unsigned> ParseHex(std::string_view text, unsigned highest) {
  if (text.starts_with("0x") || text.starts_with("0X")) text.remove_prefix(2);
  unsigned number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  const bool isWhole = end == text.data() + text.size();
  if (error != std::errc() || !isWhole || number > highest) return std::nullopt;
  return number;
}

std::optional<WrittenAddress> ParseAddress(std::string_view text) {
  if (const auto location = ParseLocation(text)) return WrittenAddress{{}, *location};
  constexpr unsigned kHighestDomain = 0x7FFFFFFF;
  const std::size_t dot = text.rfind('.');
  const std::size_t colon = text.rfind(':', dot);
  if (dot == std::string_view::npos || colon == std::string_view::npos) return std::nullopt;
  const std::string_view front = text.substr(0, colon);
  const std::size_t first = front.rfind(':');
  const bool hasDomain = first != std::string_view::npos;
  const auto domain = hasDomain ? ParseHex(front.substr(0, first), kHighestDomain) : std::nullopt;
  const auto bus = ParseHex(hasDomain ? front.substr(first + 1) : front, 255);
  const auto device = ParseHex(text.substr(colon + 1, dot - colon - 1), 31);
  const auto function = ParseHex(text.substr(dot + 1), 7);
  if ((hasDomain && !domain) || !bus || !device || !function) return std::nullopt;
  return WrittenAddress{domain, {*bus, *device, *function}};
}

std::optional<DomainAddress> ParseDomainAddress(std::string_view text) {
  const auto written = ParseAddress(text);
  if (!written || !written->domain) return std::nullopt;
  return DomainAddress{*written->domain, written->address};
}

std::string FormatAddress(const PciAddress& address) {
  return fmt::format(FMT_COMPILE("{:02x}:{:02x}.{:x}"), address.bus, address.device,
                     address.function);
}

std::string FormatAddress(const DomainAddress& address) {
  const PciAddress& inDomain = address.address;
  return fmt::format(FMT_COMPILE("{:04x}:{:02x}:{:02x}.{:x}"), address.domain, inDomain.bus,
                     inDomain.device, inDomain.function);
}

}  // namespace pciinfo
