// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

namespace topology {

/// The address of a PCI function. Domains of Linux may be wider than 16 bits.
struct Address {
  std::uint32_t domain = 0;
  std::uint8_t bus = 0;
  std::uint8_t device = 0;    ///< 0 to 31
  std::uint8_t function = 0;  ///< 0 to 7

  bool operator==(const Address&) const = default;
  bool operator<(const Address& other) const {
    return std::tie(domain, bus, device, function) <
           std::tie(other.domain, other.bus, other.device, other.function);
  }
};

/// The domain and the bus as one number, in the order of addresses.
constexpr std::uint64_t BusKey(std::uint32_t domain, std::uint8_t bus) {
  return std::uint64_t{domain} << 8 | bus;
}

/// Whether both are functions of one device.
bool IsSameDevice(const Address& left, const Address& right);

/// "0000:01:00.0", as the kernel and lspci write it.
std::string ToText(const Address& address);

/// Reads the text of ToText, with any width of the domain. Returns nothing for any other text.
std::optional<Address> ParseAddress(std::string_view text);

/// Reads "0000:01:00", the address of a device as /sys/bus/pci/slots gives it; function 0.
std::optional<Address> ParseDeviceAddress(std::string_view text);

}  // namespace topology
