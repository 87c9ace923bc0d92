// SPDX-License-Identifier: Apache-2.0
#include "topology/details_reader.h"

#include <algorithm>

#include "framework/os_specific.h"
#include "topology/kernel_files.h"
#include "topology/system_names_reader.h"
#include "topology/whole_file.h"

namespace topology {
namespace {

using NQZMVTQ20::TOSSpecific;

constexpr std::size_t kLongestAttribute = 4096;

/// The file of the running kernel; in a captured machine, which shows no such file and no running
/// kernel, the part of it that the capture has kept. Empty: there is none.
std::string FindModuleAliases() {
  const std::string release = Directory("/proc/sys/kernel").ReadLine("osrelease");
  for (const std::string& path :
       {"/lib/modules/" + release + "/modules.alias", std::string("/sys/bus/pci/modules.alias")}) {
    if (TOSSpecific::FileExists(path)) return path;
  }
  return "";
}

/// The bytes from 256 on. Where sysfs is missing, /proc has them, in a directory that is named by
/// the bus, and by the domain if that is not the first.
std::string ReadExtendedBytes(const Address& address, const Directory& device) {
  constexpr std::size_t kLength = kExtendedSize - kConventionalSize;
  if (device.IsOpen()) return device.Read("config", kLength, kConventionalSize).value_or("");
  const std::string text = ToText(address);
  const std::size_t file = text.rfind(':') + 1;
  const std::string bus = text.substr(0, file - 1);
  for (const std::string& name : {bus, bus.substr(bus.rfind(':') + 1)}) {
    const Directory directory(std::string(kProcPci) + "/" + name);
    const auto bytes = directory.Read(text.c_str() + file, kLength, kConventionalSize);
    if (bytes || address.domain != 0) return bytes.value_or("");
  }
  return "";
}

/// Only PCI Express has more than 256 bytes, and reading them costs a bus access for every four.
void ReadExtended(const Function& function, const Directory& device, FunctionDetails& details) {
  if (!function.config.capabilitiesKnown) {
    details.extendedUnknownBecause = "the capabilities could not be read";
    return;
  }
  details.extended.known = true;
  if (!function.config.express) return;
  // Extended capabilities refer to nothing in the first 256 bytes, so those are not kept.
  const std::string front(kConventionalSize, '\0');
  details.extended =
      DecodeExtended(ConfigSpace(front + ReadExtendedBytes(function.address, device)));
  if (!details.extended.known) {
    details.extendedUnknownBecause = "the kernel shows 256 bytes of configuration space only";
  }
}

std::optional<ErrorCounters> ReadCounters(const Directory& device, const char* name) {
  return ParseErrorCounters(device.Read(name, kLongestAttribute).value_or(""));
}

PciAlias ReadAlias(const Function& function, const Directory& device) {
  const auto told = ParsePciAlias(device.ReadLine("modalias"));
  return told ? *told : AliasOf(function.config);
}

}  // namespace

DetailsReader::DetailsReader() : devices_(kSysDevices) {
  const std::string path = FindModuleAliases();
  if (path.empty()) {
    noModulesBecause_ = "this system has no modules.alias of its kernel";
  } else if (const auto text = ReadWhole(path)) {
    aliases_ = ModuleAliases(*text);
  } else {
    noModulesBecause_ = path + " could not be read";
  }
}

FunctionDetails DetailsReader::Read(const Function& function) {
  const Directory device(devices_, ToText(function.address).c_str());
  FunctionDetails details;
  ReadExtended(function, device, details);
  ReadAttributes(device, details);
  ReadVitalProductData(function, device, details);
  if (noModulesBecause_.empty())
    details.modules = aliases_.FindModules(ReadAlias(function, device));
  return details;
}

void DetailsReader::ReadAttributes(const Directory& device, FunctionDetails& details) const {
  const std::vector<std::string> entries = device.Names();
  const auto has = [&entries](const char* name) {
    return std::binary_search(entries.begin(), entries.end(), name);
  };
  details.regions = ParseResources(device.Read("resource", kLongestAttribute).value_or(""));
  details.irq = device.ReadNumber<unsigned>("irq");
  if (has("power_state")) details.powerState = device.ReadLine("power_state");
  if (has("enable")) details.enableCount = device.ReadNumber<std::uint64_t>("enable");
  details.iommuGroup = ParseNumber<std::uint64_t>(device.ReadLinkName("iommu_group"));
  for (const char* name : {"acpi_index", "index"}) {
    if (has(name)) details.firmwareIndex = device.ReadNumber<std::uint64_t>(name);
  }
  if (has("firmware_node")) details.firmwarePath = device.ReadLine("firmware_node/path");
  if (has("aer_dev_correctable")) {
    details.correctable = ReadCounters(device, "aer_dev_correctable");
    details.nonFatal = ReadCounters(device, "aer_dev_nonfatal");
    details.fatal = ReadCounters(device, "aer_dev_fatal");
  }
  details.names = ReadSystemNames(device, entries);
}

void DetailsReader::ReadVitalProductData(const Function& function, const Directory& device,
                                         FunctionDetails& details) {
  if (!function.config.capabilitiesKnown) {
    details.noVitalProductDataBecause = "the capabilities could not be read";
    return;
  }
  if (!function.config.holdsVitalProductData) return;
  const VitalProductBytes read = vitalProducts_.Read(device);
  if (read.bytes.empty()) {
    details.noVitalProductDataBecause = read.trouble;
    return;
  }
  details.vitalProductData = DecodeVitalProductData(read.bytes);
  if (!read.trouble.empty()) details.vitalProductData->problem = read.trouble;
}

}  // namespace topology
