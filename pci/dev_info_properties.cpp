// SPDX-License-Identifier: Apache-2.0
#include <utility>

#include "pci/address.h"
#include "pci/dev_info.h"
#include "pci/process_state.h"
#include "pci/routine_lines.h"
#include "plugin/array_value.h"
#include "plugin/class_names.h"
#include "plugin/system_keys.h"
#include "plugin/values.h"

using NQZMVTQ20::TCIMValue;

namespace {

// Flag bits in the low end of a base address (PCI Local Bus 3.0, 6.2.5.1).
constexpr std::uint32_t kIoFlag = 0x1;
constexpr std::uint32_t kIoMask = 0xFFFFFFFC;
constexpr std::uint32_t kMemoryMask = 0xFFFFFFF0;

// Addresses and sizes of a function's regions. A region without a size still has an address, so the
// lists may have different lengths.
struct Regions {
  std::vector<std::uint32_t> memoryAddresses;
  std::vector<std::uint32_t> memoryLengths;
  std::vector<std::uint16_t> ioAddresses;
  std::vector<std::uint16_t> ioLengths;
};

Regions SortRegions(const sPciDevices& record) {
  Regions regions;
  for (std::size_t i = 0; i < record.baseAddress.size(); ++i) {
    const std::uint32_t base = record.baseAddress[i];
    const std::uint32_t size = record.regionSize[i];
    if (base == 0) continue;
    if (base & kIoFlag) {
      // On machines with I/O space, its addresses have 16 bits.
      regions.ioAddresses.push_back(static_cast<std::uint16_t>(base & kIoMask));
      if (size != 0) regions.ioLengths.push_back(static_cast<std::uint16_t>(size));
    } else {
      regions.memoryAddresses.push_back(base & kMemoryMask);
      if (size != 0) regions.memoryLengths.push_back(size);
    }
  }
  return regions;
}

std::string MismatchText(const char* what, std::uint16_t inConfiguration, std::uint16_t inList) {
  return std::string("Configuration ") + what + " id " +
         dataToString<unsigned short>(inConfiguration) + " and devices file " + what + " id " +
         dataToString<unsigned short>(inList) + " did not match.";
}

TCIMValue ConfigByteValue(const sPciDevices& record, EPciConfigOffset offset) {
  return TCIMValue(record.configSpace[offset]);
}

TCIMValue ConfigWordValue(const sPciDevices& record, EPciConfigOffset offset) {
  return TCIMValue(ConfigWord(record.configSpace, offset));
}

// Returns the description from the listing, else from the kernel, else the IDs as text.
std::string Describe(TPciDevInfo& collector, const sPciDevices& record) {
  const PciAddress address{record.bus, record.device, record.function};
  std::string description = collector.GetLspciDeviceDescription(address.ListingKey());
  if (description.empty()) description = collector.GetDeviceDescription(address.LegacyKey());
  if (!description.empty()) return description;
  return "PCI Vendor ID " + dataToString<unsigned short>(record.vendorId) + "  PCI Device ID " +
         dataToString<unsigned short>(record.deviceId);
}

}  // namespace

int TPciDevInfo::PopulateKeyProperties(TPropertyMap* properties) {
  InsertSystemKeys(GetCIMClass(), properties);
  return 0;
}

int TPciDevInfo::GetCommonDevProperties(TRecord record, TPropertyMap* properties) {
  static const RoutineLines kLines("GetCommonDevProperties");
  WriteDebug(kLines.entering);
  const auto reject = [&](const std::string& why) {
    properties->clear();
    WriteStatus(why);
    return 1;
  };

  const std::uint16_t vendorId = ConfigWord(record->configSpace, kConfigVendorId);
  if (vendorId != record->vendorId) {
    return reject(MismatchText("vendor", vendorId, record->vendorId));
  }
  InsertProperty(properties, "VendorID", TCIMValue(record->vendorId));
  const std::uint16_t deviceId = ConfigWord(record->configSpace, kConfigDeviceId);
  if (deviceId != record->deviceId) {
    return reject(MismatchText("device", deviceId, record->deviceId));
  }
  InsertProperty(properties, "PciDeviceID", TCIMValue(record->deviceId));
  if (PopulateKeyProperties(properties) == 1) return reject("Could not get Key Properties");

  if (processState.slotIDRetrievalType != 0) {
    const unsigned slot = correlateDeviceAndSlot(record->bus, &slotBusCollectionVect);
    if (slot != kNoSlot) {
      InsertProperty(properties, "UINumber", TCIMValue(static_cast<std::uint8_t>(slot)));
    }
  } else {
    WriteDebug("SMBIOS version not support.");
  }
  InsertProperty(properties, "ClassCode", ConfigByteValue(*record, kConfigBaseClass));
  InsertProperty(properties, "Subclass", ConfigByteValue(*record, kConfigSubclass));
  InsertProperty(properties, "ProgrammingInterface",
                 ConfigByteValue(*record, kConfigProgrammingInterface));
  InsertProperty(properties, "Revision", ConfigByteValue(*record, kConfigRevision));
  InsertProperty(properties, "Description", TCIMValue(Describe(*this, *record)));
  // "DeviceID" identifies a function by its location; the PCI device ID is "PciDeviceID".
  std::string location =
      "PCI" + PciAddress{record->bus, record->device, record->function}.LegacyKey();
  InsertProperty(properties, "Location", TCIMValue(location));
  InsertProperty(properties, "DeviceID", TCIMValue(std::move(location)));
  WriteDebug(kLines.exiting);
  return 0;
}

TPropertyMap TPciDevInfo::PopulatePciBridgeProperties(TRecord record) {
  TPropertyMap properties;
  InsertProperty(&properties, "CreationClassName", TCIMValue(kPciBridgeClass));
  if (GetCommonDevProperties(record, &properties) == 1) return {};
  return properties;
}

TPropertyMap TPciDevInfo::PopulatePciDeviceProperties(TRecord record) {
  static const RoutineLines kLines("PopulatePciDeviceProperties");
  WriteDebug(kLines.entering);
  TPropertyMap properties;
  InsertProperty(&properties, "CreationClassName", TCIMValue(kPciDeviceClass));
  if (GetCommonDevProperties(record, &properties) == 1) return {};
  InsertProperty(&properties, "SubsystemVendorID",
                 ConfigWordValue(*record, kConfigSubsystemVendorId));
  InsertProperty(&properties, "SubsystemID", ConfigWordValue(*record, kConfigSubsystemId));
  Regions regions = SortRegions(*record);
  const auto insert = [&](const char* name, auto& numbers, auto makeValue) {
    if (!numbers.empty()) InsertProperty(&properties, name, (this->*makeValue)(std::move(numbers)));
  };
  insert("MEMAddress", regions.memoryAddresses, &TPciDevInfo::GetDwordCimValue);
  insert("MEMLength", regions.memoryLengths, &TPciDevInfo::GetDwordCimValue);
  insert("IOAddress", regions.ioAddresses, &TPciDevInfo::GetWordCimValue);
  insert("IOLength", regions.ioLengths, &TPciDevInfo::GetWordCimValue);
  if (record->irq != 0) InsertProperty(&properties, "IRQ", TCIMValue(record->irq));
  WriteDebug(kLines.exiting);
  return properties;
}

std::uint8_t TPciDevInfo::GetClassCode(TRecord record) {
  return record->configSpace[kConfigBaseClass];
}

TCIMValue TPciDevInfo::GetWordCimValue(std::vector<std::uint16_t> numbers) {
  return MakeArrayValue(TCIMValue::TCIMType::kUint16, std::move(numbers));
}

TCIMValue TPciDevInfo::GetDwordCimValue(std::vector<std::uint32_t> numbers) {
  return MakeArrayValue(TCIMValue::TCIMType::kUint32, std::move(numbers));
}
