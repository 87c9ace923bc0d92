#include <utility>

#include "pci/address.h"
#include "pci/config_file.h"
#include "pci/dev_info.h"
#include "pci/hardware_probe.h"
#include "pci/process_state.h"

namespace {

constexpr std::uint8_t kBridgeBaseClass = 0x06;  // PCI Code and ID Assignment 1.11, 1.7

}  // namespace

EFunctionKind TPciDevInfo::KindOf(TRecord record) {
  return GetClassCode(record) == kBridgeBaseClass ? kBridge : kDevice;
}

std::vector<PreparedFunction> TPciDevInfo::PrepareFunctions(std::vector<sPciDevices>* records) {
  std::vector<PreparedFunction> functions(records->size());
  auto prepared = functions.begin();
  for (auto record = records->begin(); record != records->end(); ++record, ++prepared) {
    prepared->isRead = ReadHeaderAhead(&*record);
    if (prepared->isRead) prepared->own = OwnProperties(record, KindOf(record));
  }
  return functions;
}

bool TPciDevInfo::ReadUnlessRead(TRecord record, PreparedFunction* prepared) {
  if (prepared->isRead) {
    WriteDebug(kEnteringPciRead);
    WriteDebug(kExitingPciRead);
    return true;
  }
  if (PciRead(record) != 0) return false;
  prepared->own = OwnProperties(record, KindOf(record));
  return true;
}

void TPciDevInfo::GetPciInfo(std::vector<TPropertyMap>* bridges,
                             std::vector<TPropertyMap>* devices) {
  WriteDebug("Entering TPciDevInfo::GetPciInfo routine");
  std::vector<sPciDevices> records = ScanPciDevices();
  // The first function has to wait for the listing of `lspci`, which a host may be making by now:
  // what is done before that takes no time of its own. The log speaks of each function in its turn.
  std::vector<PreparedFunction> functions = PrepareFunctions(&records);
  // The probe is a stand-in for firmware that tells no bus numbers. Bridges get a slot number from
  // the firmware only, so it has work only where slot numbers come from elsewhere.
  const bool mayProbe = processState.slotIDRetrievalType == 0;
  THwinfoSlotMap hwinfoSlotMap;
  for (auto record = records.begin(); record != records.end(); ++record) {
    PreparedFunction& prepared = functions[static_cast<std::size_t>(record - records.begin())];
    if (!ReadUnlessRead(record, &prepared)) continue;
    if (KindOf(record) == kDevice) {
      TPropertyMap device = CompleteDevice(record, std::move(prepared.own));
      if (!device.empty()) devices->push_back(std::move(device));
      continue;
    }
    TPropertyMap bridge = CompleteBridge(record, std::move(prepared.own));
    if (bridge.empty()) continue;
    bridges->push_back(std::move(bridge));
    if (!mayProbe || !HasSlotNumber(bridges->back())) continue;
    const PciAddress address{record->bus, record->device, record->function};
    ProbeBelowBridge(address.WithDomain(), bridges->back(), &hwinfoSlotMap);
  }
  if (mayProbe) FillInSlotNumbers(hwinfoSlotMap, devices);
  WriteDebug("Exiting TPciDevInfo::GetPciInfo routine");
}

std::string TPciDevInfo::Parsehwinfo(std::string address) { return DeviceKeyFromAddress(address); }

std::string TPciDevInfo::Parsedevid(std::string location) {
  return DeviceKeyFromLocation(std::move(location));
}
