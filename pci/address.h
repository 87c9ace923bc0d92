#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Bus, device and function number of a PCI function, and the texts that different sources write
/// for it.
struct PciAddress {
  std::uint8_t bus = 0;
  std::uint8_t device = 0;
  std::uint8_t function = 0;

  /// "00:1f.3", as listing tools begin a line; hexadecimal.
  std::string ListingKey() const;
  /// " Bus  0, device  31, function  3", as the kernel's old text listing begins an entry; decimal.
  std::string LegacyKey() const;
  /// "0000:00:1f.3", with the PCI domain.
  std::string WithDomain() const;
};

/// `value` in decimal, right-aligned with leading blanks to `width` characters, never cut.
std::string PadDecimal(int value, unsigned width);

/// The key "PCIBus0device31function3" (decimal) for an address text "00:1f.3" (hexadecimal). What
/// follows the function's digits is ignored; the empty text when ":" or "." is missing.
std::string DeviceKeyFromAddress(std::string_view address);

/// The same key for a location text "PCI Bus  0, device  31, function  3": the text without its
/// blanks and commas.
std::string DeviceKeyFromLocation(std::string location);
