// SPDX-License-Identifier: Apache-2.0
#include "topology/regions.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace topology {
namespace {

// Bits of the flags in a `resource` file (the kernel's IORESOURCE_*).
constexpr std::uint64_t kIoFlag = 0x100;
constexpr std::uint64_t kPrefetchableFlag = 0x2000;
constexpr std::uint64_t k64BitFlag = 0x100000;
constexpr unsigned kRomNumber = 6;

/// Reads a number such as "0x00000000fc000000" from the front of `text` and removes it.
std::optional<std::uint64_t> TakeHexNumber(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  if (text.starts_with("0x")) text.remove_prefix(2);
  std::uint64_t number = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  if (error != std::errc()) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
  return number;
}

}  // namespace

std::string Region::GetKind() const {
  if (number == kRomNumber) return "expansion ROM";
  const std::string kind = (flags & kIoFlag) != 0 ? "I/O" : "memory";
  return number > kRomNumber ? kind + " window" : kind;
}

bool Region::IsPrefetchable() const noexcept { return (flags & kPrefetchableFlag) != 0; }

bool Region::Is64Bit() const noexcept { return (flags & k64BitFlag) != 0; }

std::vector<Region> ParseResources(std::string_view text) {
  std::vector<Region> regions;
  unsigned number = 0;
  for (std::size_t at = 0; at < text.size(); ++number) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    std::string_view line = text.substr(at, end - at);
    at = end + 1;
    const auto first = TakeHexNumber(line);
    const auto last = TakeHexNumber(line);
    const auto flags = TakeHexNumber(line);
    if (!first || !last || !flags || (*first == 0 && *last == 0 && *flags == 0)) continue;
    regions.push_back({number, *first, *last < *first ? 0 : *last - *first + 1, *flags});
  }
  return regions;
}

}  // namespace topology
