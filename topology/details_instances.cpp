// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <map>
#include <span>

#include "topology/details_reader.h"
#include "topology/instances.h"
#include "topology/properties.h"
#include "topology/two_threads.h"

namespace topology {
namespace {

using Type = NQZMVTQ20::TCIMValue::TCIMType;
using Functions = std::span<const Function>;

/// The details of so many functions are held in memory at a time. To read so many takes much longer
/// than to start a thread.
constexpr std::size_t kReadAtOnce = 128;

/// The virtual functions of each physical one.
using VirtualFunctionsOf = std::map<Address, std::vector<std::string>>;

VirtualFunctionsOf FindVirtualFunctions(const std::vector<Function>& functions) {
  VirtualFunctionsOf found;
  for (const Function& function : functions) {
    if (function.physicalFunction) {
      found[*function.physicalFunction].push_back(ToText(function.address));
    }
  }
  return found;
}

void SetInterrupts(const Interrupts& interrupts, PropertyWriter& writer) {
  writer.Set("InterruptMode", interrupts.GetMode());
  writer.Set("InterruptPin", interrupts.pin);
  if (interrupts.msi) {
    writer.Set("MsiVectors", interrupts.msi->vectors);
    writer.Set("EnabledMsiVectors", interrupts.msi->enabledVectors);
  }
  if (interrupts.msix) {
    writer.Set("MsixVectors", interrupts.msix->vectors);
    writer.Set("EnabledMsixVectors", interrupts.msix->enabledVectors);
  }
}

void SetRegions(const std::vector<Region>& regions, PropertyWriter& writer) {
  writer.SetArray("RegionNumber", Type::kUint8, regions,
                  [](const Region& region) { return static_cast<std::uint8_t>(region.number); });
  writer.SetArray("RegionStart", Type::kUint64, regions,
                  [](const Region& region) { return region.start; });
  writer.SetArray("RegionSize", Type::kUint64, regions,
                  [](const Region& region) { return region.size; });
  writer.SetArray("RegionKind", Type::kString, regions,
                  [](const Region& region) { return region.GetKind(); });
  writer.SetArray("RegionPrefetchable", Type::kBoolean, regions,
                  [](const Region& region) { return region.IsPrefetchable(); });
  writer.SetArray("Region64Bit", Type::kBoolean, regions,
                  [](const Region& region) { return region.Is64Bit(); });
}

std::string SizesText(const ResizableRegion& region) {
  std::string text;
  for (const std::uint64_t size : region.sizes) {
    text += (text.empty() ? "" : ", ") + SizeText(size);
  }
  return text;
}

void SetResizable(const std::vector<ResizableRegion>& regions, PropertyWriter& writer) {
  writer.SetArray("ResizableRegionNumber", Type::kUint8, regions,
                  [](const ResizableRegion& region) { return region.number; });
  writer.SetArray("ResizableRegionSize", Type::kUint64, regions,
                  [](const ResizableRegion& region) { return region.size; });
  writer.SetArray("ResizableRegionSizes", Type::kString, regions, SizesText);
}

void SetExtended(const ExtendedFacts& facts, PropertyWriter& writer) {
  if (facts.serialNumber) writer.Set("SerialNumber", SerialText(*facts.serialNumber));
  writer.Set("NextFunction", facts.nextFunction);
  SetResizable(facts.resizable, writer);
  if (facts.known) {
    writer.Set("ErrorReporting", facts.errors.has_value());
    writer.Set("AlternativeRoutingID", facts.nextFunction.has_value());
  }
  if (facts.errors) {
    writer.SetTexts("UncorrectableErrors", UncorrectableNames(facts.errors->uncorrectable));
    writer.SetTexts("CorrectableErrors", CorrectableNames(facts.errors->correctable));
  }
  if (!facts.virtualFunctions) return;
  writer.Set("TotalVirtualFunctions", facts.virtualFunctions->total);
  writer.Set("EnabledVirtualFunctions", facts.virtualFunctions->enabled);
  writer.Set("VirtualFunctionOffset", facts.virtualFunctions->firstOffset);
  writer.Set("VirtualFunctionStride", facts.virtualFunctions->stride);
  writer.Set("VirtualFunctionDeviceID", facts.virtualFunctions->deviceId);
}

void SetCounters(const FunctionDetails& details, PropertyWriter& writer) {
  if (details.correctable) {
    writer.Set("CorrectableErrorCount", details.correctable->total);
    writer.SetTexts("CorrectableErrorCounters", details.correctable->nonZero);
  }
  if (details.nonFatal) {
    writer.Set("NonFatalErrorCount", details.nonFatal->total);
    writer.SetTexts("NonFatalErrorCounters", details.nonFatal->nonZero);
  }
  if (details.fatal) {
    writer.Set("FatalErrorCount", details.fatal->total);
    writer.SetTexts("FatalErrorCounters", details.fatal->nonZero);
  }
}

void SetVitalProductData(const VitalProductData& data, PropertyWriter& writer) {
  writer.Set("ProductName", data.name);
  writer.Set("ProductPartNumber", data.Find("PN"));
  writer.Set("ProductSerialNumber", data.Find("SN"));
  writer.Set("ProductEngineeringChange", data.Find("EC"));
  writer.Set("ProductManufacture", data.Find("MN"));
  writer.SetArray("VitalProductKeywords", Type::kString, data.readOnly,
                  [](const VitalProductField& field) { return field.keyword; });
  writer.SetArray("VitalProductValues", Type::kString, data.readOnly,
                  [](const VitalProductField& field) { return field.value; });
  writer.Set("VitalProductChecksumRight", data.checksumRight);
  writer.Set("VitalProductDataProblem", data.problem);
}

void SetNames(const SystemNames& names, PropertyWriter& writer) {
  writer.SetArray("NetworkInterfaces", Type::kString, names.networkInterfaces,
                  [](const NetworkInterface& interface) { return interface.name; });
  writer.SetArray("NetworkAddresses", Type::kString, names.networkInterfaces,
                  [](const NetworkInterface& interface) { return interface.address; });
  writer.SetTexts("BlockDevices", names.blockDevices);
  writer.SetArray("NvmeControllers", Type::kString, names.nvmeControllers,
                  [](const NvmeController& controller) { return controller.name; });
  writer.SetArray("NvmeModels", Type::kString, names.nvmeControllers,
                  [](const NvmeController& controller) { return controller.model; });
  writer.SetArray("NvmeSerialNumbers", Type::kString, names.nvmeControllers,
                  [](const NvmeController& controller) { return controller.serialNumber; });
  writer.SetArray("NvmeFirmwareRevisions", Type::kString, names.nvmeControllers,
                  [](const NvmeController& controller) { return controller.firmware; });
  writer.SetTexts("DrmDevices", names.drmDevices);
  writer.SetArray("InfinibandDevices", Type::kString, names.infinibandDevices,
                  [](const InfinibandDevice& device) { return device.name; });
  writer.SetArray("InfinibandFirmwareVersions", Type::kString, names.infinibandDevices,
                  [](const InfinibandDevice& device) { return device.firmware; });
  writer.SetTexts("ScsiHosts", names.scsiHosts);
}

void SetAttributes(const FunctionDetails& details, PropertyWriter& writer) {
  writer.Set("IommuGroup", details.iommuGroup);
  writer.Set("PowerState", details.powerState);
  writer.Set("EnableCount", details.enableCount);
  writer.Set("FirmwareIndex", details.firmwareIndex);
  writer.Set("FirmwarePath", details.firmwarePath);
  if (details.modules) writer.SetTexts("DriverModules", *details.modules);
}

void SetDetails(const Function& function, const FunctionDetails& details,
                const VirtualFunctionsOf& virtualFunctions, PropertyWriter& writer) {
  writer.Set("Address", ToText(function.address));
  SetInterrupts(function.config.interrupts, writer);
  writer.Set("InterruptNumber", details.irq);
  SetRegions(details.regions, writer);
  SetExtended(details.extended, writer);
  writer.Set("ExtendedUnknownBecause", details.extendedUnknownBecause);
  if (function.config.express && function.config.express->LeadsToLink()) {
    writer.Set("ForwardsAlternativeRoutingID", function.config.express->forwardsRoutingIds);
  }
  const auto found = virtualFunctions.find(function.address);
  if (found != virtualFunctions.end()) writer.SetTexts("VirtualFunctions", found->second);
  SetAttributes(details, writer);
  SetCounters(details, writer);
  if (details.vitalProductData) SetVitalProductData(*details.vitalProductData, writer);
  writer.Set("VitalProductDataUnknownBecause", details.noVitalProductDataBecause);
  SetNames(details.names, writer);
}

std::vector<FunctionDetails> ReadDetails(DetailsReader& reader, Functions functions) {
  return ReadOnTwoThreads(functions, [&reader](Functions part) {
    std::vector<FunctionDetails> details;
    details.reserve(part.size());
    for (const Function& function : part) details.push_back(reader.Read(function));
    return details;
  });
}

}  // namespace

void CommitDetails(const Snapshot& snapshot, NQZMVTQ20::ICIMClass& cimClass) {
  const std::vector<Function>& functions = snapshot.GetMachine().functions;
  const VirtualFunctionsOf virtualFunctions = FindVirtualFunctions(functions);
  DetailsReader reader;
  std::vector<FunctionDetails> details;
  for (std::size_t i = 0; i < functions.size(); ++i) {
    if (i % kReadAtOnce == 0) {
      const Functions left = Functions(functions).subspan(i);
      details = ReadDetails(reader, left.first(std::min(left.size(), kReadAtOnce)));
    }
    const auto instance = cimClass.CreateInstance({});
    PropertyWriter writer(*instance);
    SetDetails(functions[i], details[i % kReadAtOnce], virtualFunctions, writer);
    writer.Set("DriverModulesUnknownBecause", reader.GetNoModulesBecause());
    instance->Commit({});
  }
}

}  // namespace topology
