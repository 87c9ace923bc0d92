// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <span>
#include <string>

namespace bench {

/// The configuration space of a function besides its header.
enum class Capabilities {
  kNone,          ///< only a header of 64 bytes
  kConventional,  ///< 256 bytes: power management, MSI
  kIntegrated,    ///< 4096 bytes: PCI Express, inside a root complex
  kEndpoint,      ///< 4096 bytes: PCI Express, MSI-X, error reporting, serial number
  kPort,          ///< 4096 bytes: PCI Express with a slot, MSI, error reporting
};

/// A kind of device, with the IDs of a real one.
struct DeviceKind {
  const char* vendor;
  const char* device;
  const char* classCode;
  const char* progIf;
  const char* driver;  ///< empty: none
  unsigned functions;  ///< number of functions of a card
  Capabilities capabilities;
  bool hasIo;  ///< an I/O region besides the memory region
};

/// Cards with one bus, a mixture like in the slots of a server.
std::span<const DeviceKind> Cards();
/// Devices on the board: on the root bus of a processor, not in slots.
std::span<const DeviceKind> Chipset();
/// The processors' own devices, in the order in which they fill a bus.
std::span<const DeviceKind> ProcessorDevices();

const DeviceKind& HostBridge();
const DeviceKind& RootPort();
const DeviceKind& SwitchPort();
const DeviceKind& Drive();

/// A patch of a configuration space, as in the "patches" of a recipe.
struct ConfigurationPatch {
  unsigned offset;
  std::string bytes;  ///< hexadecimal digits
};
std::span<const ConfigurationPatch> PatchesOf(Capabilities capabilities);
unsigned SizeOf(Capabilities capabilities);

}  // namespace bench
