// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>

/// One PCI function, from the kernel's device list and its configuration space.
struct sPciDevices {
  std::uint8_t bus = 0;
  std::uint8_t device = 0;
  std::uint8_t function = 0;
  std::uint16_t vendorId = 0;
  std::uint16_t deviceId = 0;
  std::uint16_t irq = 0;
  std::array<std::uint32_t, 6> baseAddress{};  ///< with the flag bits, as the kernel prints them
  std::array<std::uint32_t, 6> regionSize{};   ///< in bytes
  /// Configuration space by its offsets (PCI Local Bus 3.0, 6.1); zero until it has been read.
  std::array<std::uint8_t, 256> configSpace{};
};

/// Offsets in configuration space; multi-byte fields are little-endian.
enum EPciConfigOffset : unsigned {
  kConfigVendorId = 0x00,
  kConfigDeviceId = 0x02,
  kConfigRevision = 0x08,
  kConfigProgrammingInterface = 0x09,
  kConfigSubclass = 0x0A,
  kConfigBaseClass = 0x0B,
  kConfigHeaderType = 0x0E,
  kConfigPrimaryBus = 0x18,      ///< header type 1
  kConfigSecondaryBus = 0x19,    ///< header type 1
  kConfigSubordinateBus = 0x1A,  ///< header type 1
  kConfigSubsystemVendorId = 0x2C,
  kConfigSubsystemId = 0x2E,
  kConfigHeaderSize = 0x40,
};

/// Returns the 16-bit little-endian field at an offset inside a configuration space.
template <class ConfigSpace>
std::uint16_t ConfigWord(const ConfigSpace& config, unsigned offset) {
  return static_cast<std::uint16_t>(config[offset] | config[offset + 1] << 8);
}

/// The location of a slot according to the firmware.
struct SlotLocation {
  std::uint16_t tag = 0;  ///< running number of the slot, from 1
  std::uint16_t slotId = 0;
  std::uint16_t segmentGroup = 0;
  std::uint8_t bus = 0;
  std::uint8_t device = 0;
  std::uint8_t function = 0;
  std::uint8_t currentUsage = 0;  ///< SMBIOS 7.10.3; 0 if the firmware does not say
};

/// Bus numbers that lead to a slot: `bus`, and `secondaryBus` to `subordinateBus`.
struct SlotBusCollection {
  std::uint16_t tag = 0;
  std::uint16_t slotId = 0;
  std::uint8_t bus = 0;
  std::uint8_t secondaryBus = 0;
  std::uint8_t subordinateBus = 0;
};
