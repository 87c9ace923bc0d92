// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Bus, device and function number of a PCI function, and its address in the formats of different
/// sources.
struct PciAddress {
  std::uint8_t bus = 0;
  std::uint8_t device = 0;
  std::uint8_t function = 0;

  /// "00:1f.3", the beginning of a line of lspci; hexadecimal.
  std::string ListingKey() const;
  /// " Bus  0, device  31, function  3", the beginning of an entry of /proc/pci; decimal.
  std::string LegacyKey() const;
  /// "0000:00:1f.3", with the PCI domain.
  std::string WithDomain() const;
};

/// Returns `value` in hexadecimal, in two lower-case digits.
std::string TwoHexDigits(std::uint8_t value);

/// Returns `value` in decimal, padded with leading spaces to `width` characters, never cut.
std::string PadDecimal(int value, unsigned width);

/// Returns the key "PCIBus0device31function3" (decimal) for an address "00:1f.3" (hexadecimal).
/// Ignores text after the function's digits. Returns an empty text if ":" or "." is missing.
std::string DeviceKeyFromAddress(std::string_view address);

/// Returns the same key for a location "PCI Bus  0, device  31, function  3": the text without its
/// spaces and commas.
std::string DeviceKeyFromLocation(std::string location);
