#pragma once

#include <span>
#include <string>

namespace bench {

/// What a function shows of itself besides its header.
enum class Capabilities {
  kNone,          ///< a header of 64 bytes and nothing behind it
  kConventional,  ///< 256 bytes: power management, MSI
  kIntegrated,    ///< 4096 bytes: PCI Express, inside a root complex
  kEndpoint,      ///< 4096 bytes: PCI Express, MSI-X, error reporting, serial number
  kPort,          ///< 4096 bytes: PCI Express with a slot, MSI, error reporting
};

/// A kind of device, by numbers that its maker has given it.
struct DeviceKind {
  const char* vendor;
  const char* device;
  const char* classCode;
  const char* progIf;
  const char* driver;  ///< empty: none
  unsigned functions;  ///< of a card: how many it has
  Capabilities capabilities;
  bool hasIo;  ///< an I/O region beside the memory region
};

/// Cards of one bus; what a server's slots hold, in a mixture.
std::span<const DeviceKind> Cards();
/// What is on the board: behind the processor's root bus, not in slots.
std::span<const DeviceKind> Chipset();
/// The processors' own devices, in the order in which they fill a bus.
std::span<const DeviceKind> ProcessorDevices();

const DeviceKind& HostBridge();
const DeviceKind& RootPort();
const DeviceKind& SwitchPort();
const DeviceKind& Drive();

/// The recipe's "patches" of such a configuration, and its size.
struct ConfigurationPatch {
  unsigned offset;
  std::string bytes;  ///< hexadecimal digits
};
std::span<const ConfigurationPatch> PatchesOf(Capabilities capabilities);
unsigned SizeOf(Capabilities capabilities);

}  // namespace bench
