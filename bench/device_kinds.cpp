// SPDX-License-Identifier: Apache-2.0
#include "bench/device_kinds.h"

#include <array>
#include <vector>

namespace bench {
namespace {

using enum Capabilities;

constexpr std::array kCards = {
    DeviceKind{"144d", "a808", "0108", "02", "nvme", 1, kEndpoint, false},
    DeviceKind{"8086", "1572", "0200", "00", "i40e", 4, kEndpoint, false},
    DeviceKind{"15b3", "1015", "0200", "00", "mlx5_core", 2, kEndpoint, false},
    DeviceKind{"1000", "0097", "0107", "00", "mpt3sas", 1, kEndpoint, true},
    DeviceKind{"10de", "1eb8", "0302", "00", "nvidia", 1, kEndpoint, false},
    DeviceKind{"14e4", "16d7", "0200", "00", "bnxt_en", 8, kEndpoint, false},
    DeviceKind{"1077", "2261", "0c04", "00", "qla2xxx", 2, kEndpoint, false},
    DeviceKind{"14e4", "165f", "0200", "00", "tg3", 2, kEndpoint, false},
};

constexpr std::array kChipset = {
    DeviceKind{"8086", "a1af", "0c03", "30", "xhci_hcd", 1, kConventional, false},
    DeviceKind{"8086", "a1ba", "0780", "00", "mei_me", 1, kConventional, false},
    DeviceKind{"8086", "a182", "0106", "01", "ahci", 1, kConventional, true},
    DeviceKind{"8086", "a1c1", "0601", "00", "", 1, kNone, false},
    DeviceKind{"8086", "a1a1", "0580", "00", "", 1, kNone, false},
    DeviceKind{"8086", "a1a3", "0c05", "00", "i801_smbus", 1, kNone, true},
};

// Devices on a processor's bus repeat, because each channel, core and link has one.
constexpr std::array kProcessorDevices = {
    DeviceKind{"8086", "2014", "0880", "00", "", 1, kIntegrated, false},
    DeviceKind{"8086", "2015", "1101", "00", "", 1, kConventional, false},
    DeviceKind{"8086", "2016", "0880", "00", "", 1, kConventional, false},
    DeviceKind{"8086", "2024", "0880", "00", "", 1, kIntegrated, false},
    DeviceKind{"8086", "2025", "0880", "00", "", 1, kIntegrated, false},
    DeviceKind{"8086", "2041", "0880", "00", "", 1, kConventional, false},
    DeviceKind{"8086", "2054", "0880", "00", "", 1, kConventional, false},
    DeviceKind{"8086", "2066", "0880", "00", "", 1, kIntegrated, false},
    DeviceKind{"8086", "2021", "0880", "00", "ioatdma", 1, kIntegrated, false},
};

constexpr DeviceKind kHostBridge = {"8086", "2020", "0600", "00", "", 1, kIntegrated, false};
constexpr DeviceKind kRootPort = {"8086", "2030", "0604", "00", "pcieport", 1, kPort, false};
constexpr DeviceKind kSwitchPort = {"10b5", "8747", "0604", "00", "pcieport", 1, kPort, false};

// Status with a capability list, and where the list begins (PCI Local Bus 3.0, 6.7).
const ConfigurationPatch kListAt40{0x34, "40"};
const ConfigurationPatch kHasList{0x06, "1000"};

// Power management, MSI.
const std::vector<ConfigurationPatch> kConventionalPatches = {
    kHasList, kListAt40, {0x40, "0150c3c108000000"}, {0x50, "050081000cf0fee00000000021400000"}};

// PCI Express (7.5.3): root complex integrated endpoint.
const std::vector<ConfigurationPatch> kIntegratedPatches = {
    kHasList,
    kListAt40,
    {0x40, "100092000080000000000000000000000000000000000000"},
    {0x100, "0b000100040001000000000000000000"}};

// Power management, MSI, PCI Express, MSI-X; advanced error reporting, serial number, alternative
// routing.
const std::vector<ConfigurationPatch> kEndpointPatches = {
    kHasList,
    kListAt40,
    {0x40, "015023c808200000"},
    {0x50, "0570800100000000000000000000000000000000"},
    {0x70,
     "10b00200a28d000030291000835c43000200831000000000000000000000000000000000121880080000000006"
     "0e00000300060000000000"},
    {0xB0, "1100fe00030000000310000000"},
    {0x100, "01000214000000000000000030200600000000000020000000000000"},
    {0x140, "030001159a8b7c6d5e4f3a2b"},
    {0x150, "0e0001000000000000000000"}};

// Power management, MSI, PCI Express with a slot; advanced error reporting, access control.
const std::vector<ConfigurationPatch> kPortPatches = {
    kHasList,
    kListAt40,
    {0x40, "015003c800000000"},
    {0x50, "0590850100000000000000000000000000000000"},
    {0x90, "10e0420100800000270100008338730040008370001a280dc80140000000000000000000"},
    {0xE0, "0d00000086800000"},
    {0x100, "01000111000000000000000030200600000000000020000000000000"},
    {0x110, "0d0001000f001d00"}};

const std::vector<ConfigurationPatch> kNoPatches;

}  // namespace

std::span<const DeviceKind> Cards() { return kCards; }
std::span<const DeviceKind> Chipset() { return kChipset; }
std::span<const DeviceKind> ProcessorDevices() { return kProcessorDevices; }
const DeviceKind& HostBridge() { return kHostBridge; }
const DeviceKind& RootPort() { return kRootPort; }
const DeviceKind& SwitchPort() { return kSwitchPort; }
const DeviceKind& Drive() { return kCards.front(); }

std::span<const ConfigurationPatch> PatchesOf(Capabilities capabilities) {
  switch (capabilities) {
    case kNone:
      return kNoPatches;
    case kConventional:
      return kConventionalPatches;
    case kIntegrated:
      return kIntegratedPatches;
    case kEndpoint:
      return kEndpointPatches;
    case kPort:
      break;
  }
  return kPortPatches;
}

unsigned SizeOf(Capabilities capabilities) {
  if (capabilities == kNone) return 64;
  return capabilities == kConventional ? 256 : 4096;
}

}  // namespace bench
