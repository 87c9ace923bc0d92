// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace pciinfo {

/// The address of a PCI function. Ordered by bus, device, function.
struct PciAddress {
  unsigned bus = 0;       ///< 0 to 255
  unsigned device = 0;    ///< 0 to 31
  unsigned function = 0;  ///< 0 to 7

  friend auto operator<=>(const PciAddress&, const PciAddress&) = default;
};

/// The address of a function among all PCI domains of a machine. Ordered by domain first.
struct DomainAddress {
  unsigned domain = 0;
  PciAddress address;

  friend auto operator<=>(const DomainAddress&, const DomainAddress&) = default;
};

/// Parses a location such as "PCI Bus  0, device  31, function  3" (decimal numbers, padded with
/// any number of blanks). Returns nothing for other texts and for numbers out of range.
std::optional<PciAddress> ParseLocation(std::string_view location);

/// An address as a user types it.
struct WrittenAddress {
  std::optional<unsigned> domain;  ///< no value if omitted
  PciAddress address;
};

/// Parses "00:1f.3", "0000:00:1f.3" or a location as above, in upper or lower case, with or without
/// leading zeros. Returns nothing for other texts.
std::optional<WrittenAddress> ParseAddress(std::string_view text);

/// Parses a hexadecimal number up to `highest`, with or without "0x". Returns nothing for other
/// texts.
std::optional<unsigned> ParseHex(std::string_view text, unsigned highest);

/// Parses "0000:00:1f.3". Returns nothing for other texts and for those without a domain.
std::optional<DomainAddress> ParseDomainAddress(std::string_view text);

/// Returns the usual short form, in hexadecimal: "00:1f.3".
std::string FormatAddress(const PciAddress& address);

/// Returns the full form, in hexadecimal: "0000:00:1f.3".
std::string FormatAddress(const DomainAddress& address);

}  // namespace pciinfo
