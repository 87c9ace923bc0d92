#include "host/address.h"

#include <fmt/format.h>

#include <charconv>

namespace pciinfo {
namespace {

/// Takes `label`, blanks and a decimal number up to `highest` from the front of `text`.
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

std::string FormatAddress(const PciAddress& address) {
  return fmt::format("{:02x}:{:02x}.{:x}", address.bus, address.device, address.function);
}

}  // namespace pciinfo
