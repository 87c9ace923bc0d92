// SPDX-License-Identifier: Apache-2.0
#include "host/model/bridge_buses.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <array>

#include "runtime/file_descriptor.h"

namespace pciinfo {
namespace {

constexpr std::size_t kHeaderSize = 64;
constexpr std::size_t kHeaderType = 0x0E;
constexpr std::size_t kSecondaryBus = 0x19;
constexpr std::size_t kSubordinateBus = 0x1A;

std::optional<BridgeBuses> ReadFrom(const std::string& file, const PciAddress& address) {
  const vtq::FileDescriptor opened(open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (!opened.IsOpen()) return std::nullopt;
  std::array<std::uint8_t, kHeaderSize> header{};
  const ssize_t size = pread(opened.Get(), header.data(), header.size(), 0);
  if (size < 0) return std::nullopt;
  return ParseBridgeBuses(address, std::span(header).first(static_cast<std::size_t>(size)));
}

}  // namespace

std::optional<BridgeBuses> ParseBridgeBuses(const PciAddress& address,
                                            std::span<const std::uint8_t> configuration) {
  if (configuration.size() <= kSubordinateBus) return std::nullopt;
  const unsigned headerType = configuration[kHeaderType] & 0x7FU;
  const BridgeBuses buses{configuration[kSecondaryBus], configuration[kSubordinateBus]};
  if (headerType != 1 && headerType != 2) return std::nullopt;
  if (buses.secondary <= address.bus || buses.subordinate < buses.secondary) return std::nullopt;
  return buses;
}

std::optional<BridgeBuses> ReadBridgeBuses(const PciAddress& address, const std::string& root) {
  const std::string inProc = fmt::format("{}/proc/bus/pci/{:02x}/{:02x}.{:x}", root, address.bus,
                                         address.device, address.function);
  if (const auto buses = ReadFrom(inProc, address)) return buses;
  return ReadFrom(
      fmt::format("{}/sys/bus/pci/devices/0000:{}/config", root, FormatAddress(address)), address);
}

}  // namespace pciinfo
