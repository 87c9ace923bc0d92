#include <utility>

#include "pci/address.h"
#include "pci/dev_info.h"
#include "pci/process_state.h"
#include "plugin/array_value.h"
#include "plugin/class_names.h"
#include "plugin/system_keys.h"
#include "plugin/values.h"

using NQZMVTQ20::TCIMValue;

namespace {

// Written for every function: made once.
const std::string kEnteringGetCommonDevProperties =
    "Entering TPciDevInfo::GetCommonDevProperties routine";
const std::string kExitingGetCommonDevProperties =
    "Exiting TPciDevInfo::GetCommonDevProperties routine";
const std::string kEnteringPopulatePciDeviceProperties =
    "Entering TPciDevInfo::PopulatePciDeviceProperties routine";
const std::string kExitingPopulatePciDeviceProperties =
    "Exiting TPciDevInfo::PopulatePciDeviceProperties routine";

constexpr unsigned kNoSlot = 0xFFFFFFFF;

// Flag bits in the low end of a base address (PCI Local Bus 3.0, 6.2.5.1).
constexpr std::uint32_t kIoFlag = 0x1;
constexpr std::uint32_t kIoMask = 0xFFFFFFFC;
constexpr std::uint32_t kMemoryMask = 0xFFFFFFF0;

// Addresses and sizes of a function's regions. A region without a size has an address all the same,
// so the lists need not pair up.
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
      // I/O space has 16 address bits on the machines that have one.
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

// No value for a function of any class.
TCIMValue CreationClassOf(EFunctionKind kind) {
  if (kind == kAnyFunction) return TCIMValue();
  return TCIMValue(kind == kBridge ? kPciBridgeClass : kPciDeviceClass);
}

// What the listing says of the function, else the kernel, else its numbers.
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

// In name order, which InsertProperty is quickest with; what there is not is no value.
TPropertyMap TPciDevInfo::OwnProperties(TRecord record, EFunctionKind kind) {
  const bool isDevice = kind == kDevice;
  Regions regions = isDevice ? SortRegions(*record) : Regions();
  const auto valueOf = [this](auto& list, auto make) {
    return list.empty() ? TCIMValue() : (this->*make)(std::move(list));
  };
  TPropertyMap own;
  InsertProperty(&own, "ClassCode", ConfigByteValue(*record, kConfigBaseClass));
  InsertProperty(&own, "CreationClassName", CreationClassOf(kind));
  // A function is identified by where it is: its number is "PciDeviceID".
  std::string location =
      "PCI" + PciAddress{record->bus, record->device, record->function}.LegacyKey();
  InsertProperty(&own, "DeviceID", TCIMValue(location));
  InsertProperty(&own, "IOAddress", valueOf(regions.ioAddresses, &TPciDevInfo::GetWordCimValue));
  InsertProperty(&own, "IOLength", valueOf(regions.ioLengths, &TPciDevInfo::GetWordCimValue));
  if (isDevice && record->irq != 0) InsertProperty(&own, "IRQ", TCIMValue(record->irq));
  InsertProperty(&own, "Location", TCIMValue(std::move(location)));
  InsertProperty(&own, "MEMAddress",
                 valueOf(regions.memoryAddresses, &TPciDevInfo::GetDwordCimValue));
  InsertProperty(&own, "MEMLength", valueOf(regions.memoryLengths, &TPciDevInfo::GetDwordCimValue));
  InsertProperty(&own, "PciDeviceID", TCIMValue(record->deviceId));
  InsertProperty(&own, "ProgrammingInterface",
                 ConfigByteValue(*record, kConfigProgrammingInterface));
  InsertProperty(&own, "Revision", ConfigByteValue(*record, kConfigRevision));
  InsertProperty(&own, "Subclass", ConfigByteValue(*record, kConfigSubclass));
  if (isDevice) {
    InsertProperty(&own, "SubsystemID", ConfigWordValue(*record, kConfigSubsystemId));
    InsertProperty(&own, "SubsystemVendorID", ConfigWordValue(*record, kConfigSubsystemVendorId));
  }
  InsertProperty(&own, "VendorID", TCIMValue(record->vendorId));
  return own;
}

int TPciDevInfo::GetCommonDevProperties(TRecord record, TPropertyMap* properties) {
  TPropertyMap own = OwnProperties(record, kAnyFunction);
  properties->merge(own);  // the first value of a name wins
  return CompleteProperties(record, properties);
}

int TPciDevInfo::CompleteProperties(TRecord record, TPropertyMap* properties) {
  WriteDebug(kEnteringGetCommonDevProperties);
  const auto reject = [&](const std::string& why) {
    properties->clear();
    WriteStatus(why);
    return 1;
  };

  const std::uint16_t vendorId = ConfigWord(record->configSpace, kConfigVendorId);
  if (vendorId != record->vendorId) {
    return reject(MismatchText("vendor", vendorId, record->vendorId));
  }
  const std::uint16_t deviceId = ConfigWord(record->configSpace, kConfigDeviceId);
  if (deviceId != record->deviceId) {
    return reject(MismatchText("device", deviceId, record->deviceId));
  }
  if (PopulateKeyProperties(properties) == 1) return reject("Could not get Key Properties");

  if (processState.slotIDRetrievalType != 0) {
    const unsigned slot = correlateDeviceAndSlot(record->bus, &slotBusCollectionVect);
    if (slot != kNoSlot) {
      InsertProperty(properties, "UINumber", TCIMValue(static_cast<std::uint8_t>(slot)));
    }
  } else {
    WriteDebug("SMBIOS version not support.");
  }
  InsertProperty(properties, "Description", TCIMValue(Describe(*this, *record)));
  WriteDebug(kExitingGetCommonDevProperties);
  return 0;
}

TPropertyMap TPciDevInfo::PopulatePciBridgeProperties(TRecord record) {
  return CompleteBridge(record, OwnProperties(record, kBridge));
}

TPropertyMap TPciDevInfo::CompleteBridge(TRecord record, TPropertyMap own) {
  if (CompleteProperties(record, &own) == 1) return {};
  return own;
}

TPropertyMap TPciDevInfo::PopulatePciDeviceProperties(TRecord record) {
  return CompleteDevice(record, OwnProperties(record, kDevice));
}

TPropertyMap TPciDevInfo::CompleteDevice(TRecord record, TPropertyMap own) {
  WriteDebug(kEnteringPopulatePciDeviceProperties);
  if (CompleteProperties(record, &own) == 1) return {};
  WriteDebug(kExitingPopulatePciDeviceProperties);
  return own;
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
