// SPDX-License-Identifier: Apache-2.0
#include <utility>

#include "pci/address.h"
#include "pci/dev_info.h"
#include "pci/hardware_probe.h"
#include "pci/process_state.h"
#include "pci/routine_lines.h"

namespace {

constexpr std::uint8_t kBridgeBaseClass = 0x06;  // PCI Code and ID Assignment 1.11, 1.7

}  // namespace

void TPciDevInfo::GetPciInfo(std::vector<TPropertyMap>* bridges,
                             std::vector<TPropertyMap>* devices) {
  static const RoutineLines kLines("GetPciInfo");
  WriteDebug(kLines.entering);
  std::vector<sPciDevices> records = ScanPciDevices();
  // The probe replaces firmware that has no bus numbers of slots. It starts from bridges with a
  // slot number; since only the firmware gives bridges one, it usually has nothing to do.
  const bool mayProbe = processState.slotIDRetrievalType == 0;
  THwinfoSlotMap hwinfoSlotMap;
  for (auto record = records.begin(); record != records.end(); ++record) {
    if (PciRead(record) != 0) continue;
    if (GetClassCode(record) != kBridgeBaseClass) {
      TPropertyMap device = PopulatePciDeviceProperties(record);
      if (!device.empty()) devices->push_back(std::move(device));
      continue;
    }
    TPropertyMap bridge = PopulatePciBridgeProperties(record);
    if (bridge.empty()) continue;
    bridges->push_back(std::move(bridge));
    if (!mayProbe || !HasSlotNumber(bridges->back())) continue;
    const PciAddress address{record->bus, record->device, record->function};
    ProbeBelowBridge(address.WithDomain(), bridges->back(), &hwinfoSlotMap);
  }
  if (mayProbe) FillInSlotNumbers(hwinfoSlotMap, devices);
  WriteDebug(kLines.exiting);
}

std::string TPciDevInfo::Parsehwinfo(std::string address) { return DeviceKeyFromAddress(address); }

std::string TPciDevInfo::Parsedevid(std::string location) {
  return DeviceKeyFromLocation(std::move(location));
}
