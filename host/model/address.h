#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace pciinfo {

/// Where a PCI function sits. Ordered by bus, device, function.
struct PciAddress {
  unsigned bus = 0;       ///< 0 to 255
  unsigned device = 0;    ///< 0 to 31
  unsigned function = 0;  ///< 0 to 7

  friend auto operator<=>(const PciAddress&, const PciAddress&) = default;
};

/// Reads a location such as "PCI Bus  0, device  31, function  3" (decimal numbers, padded with any
/// number of blanks). No value for every other text and for numbers out of range.
std::optional<PciAddress> ParseLocation(std::string_view location);

/// An address as people write it.
struct WrittenAddress {
  unsigned domain = 0;  ///< 0 where none was written
  PciAddress address;
};

/// Reads "00:1f.3", "0000:00:1f.3" or a location as above; letters may be large, leading zeros may
/// be left out. No value for every other text.
std::optional<WrittenAddress> ParseAddress(std::string_view text);

/// Reads a hexadecimal number up to `highest`, with or without "0x". No value for every other text.
std::optional<unsigned> ParseHex(std::string_view text, unsigned highest);

/// The usual short form, hexadecimal: "00:1f.3".
std::string FormatAddress(const PciAddress& address);

}  // namespace pciinfo
