// SPDX-License-Identifier: Apache-2.0
#include "host/machine/function_details.h"

#include <algorithm>

namespace pciinfo {
namespace {

/// The element of a list that may be shorter than the others.
template <class List>
auto ElementAt(const List& list, std::size_t place) {
  return place < list.size() ? list[place] : typename List::value_type{};
}

/// The properties with lists of devices of one kind, in parallel. Null: there is no such list.
struct DeviceProperties {
  const char* kind = nullptr;
  const char* names = nullptr;
  const char* addresses = nullptr;
  const char* models = nullptr;
  const char* serialNumbers = nullptr;
  const char* firmware = nullptr;
};

constexpr DeviceProperties kDeviceProperties[] = {
    {.kind = "network", .names = "NetworkInterfaces", .addresses = "NetworkAddresses"},
    {.kind = "block", .names = "BlockDevices"},
    {.kind = "nvme",
     .names = "NvmeControllers",
     .models = "NvmeModels",
     .serialNumbers = "NvmeSerialNumbers",
     .firmware = "NvmeFirmwareRevisions"},
    {.kind = "drm", .names = "DrmDevices"},
    {.kind = "infiniband", .names = "InfinibandDevices", .firmware = "InfinibandFirmwareVersions"},
    {.kind = "scsi", .names = "ScsiHosts"},
};

bool HasDevice(const PropertyReader& reader, const vtq::Instance& instance,
               const std::string& name) {
  return std::any_of(std::begin(kDeviceProperties), std::end(kDeviceProperties),
                     [&](const DeviceProperties& properties) {
                       const auto devices = reader.Texts(instance, properties.names);
                       return std::find(devices.begin(), devices.end(), name) != devices.end();
                     });
}

}  // namespace

std::vector<Region> ReadRegions(const PropertyReader& reader, const vtq::Instance& instance) {
  const auto numbers = reader.LongNumbers(instance, "RegionNumber");
  const auto starts = reader.LongNumbers(instance, "RegionStart");
  const auto sizes = reader.LongNumbers(instance, "RegionSize");
  const auto kinds = reader.Texts(instance, "RegionKind");
  const auto prefetchable = reader.Booleans(instance, "RegionPrefetchable");
  const auto wide = reader.Booleans(instance, "Region64Bit");
  std::vector<Region> regions;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    regions.push_back({numbers[i], ElementAt(starts, i), ElementAt(sizes, i), ElementAt(kinds, i),
                       ElementAt(prefetchable, i), ElementAt(wide, i)});
  }
  return regions;
}

std::vector<SystemDevice> ReadSystemDevices(const PropertyReader& reader,
                                            const vtq::Instance& instance) {
  std::vector<SystemDevice> devices;
  for (const DeviceProperties& properties : kDeviceProperties) {
    const auto names = reader.Texts(instance, properties.names);
    const auto listOf = [&](const char* property) {
      return property == nullptr ? std::vector<std::string>() : reader.Texts(instance, property);
    };
    const auto addresses = listOf(properties.addresses);
    const auto models = listOf(properties.models);
    const auto serialNumbers = listOf(properties.serialNumbers);
    const auto firmware = listOf(properties.firmware);
    for (std::size_t i = 0; i < names.size(); ++i) {
      devices.push_back({properties.kind, names[i], ElementAt(addresses, i), ElementAt(models, i),
                         ElementAt(serialNumbers, i), ElementAt(firmware, i)});
    }
  }
  return devices;
}

FunctionDetails ReadDetails(const vtq::Namespace& repository, const DomainAddress& address) {
  const std::shared_ptr<vtq::Class> cimClass = repository.Find(kDetailsClass);
  if (cimClass == nullptr) return {};
  const PropertyReader reader(*cimClass);
  for (const auto& instance : cimClass->GetInstances()) {
    if (ParseDomainAddress(reader.Text(*instance, "Address")) != address) continue;
    return {cimClass, instance, ReadRegions(reader, *instance)};
  }
  return {};
}

std::vector<DomainAddress> FunctionsWithDevice(const vtq::Namespace& repository,
                                               const std::string& name) {
  std::vector<DomainAddress> functions;
  const std::shared_ptr<vtq::Class> cimClass = repository.Find(kDetailsClass);
  if (cimClass == nullptr) return functions;
  const PropertyReader reader(*cimClass);
  for (const auto& instance : cimClass->GetInstances()) {
    const auto address = ParseDomainAddress(reader.Text(*instance, "Address"));
    if (address && HasDevice(reader, *instance, name)) functions.push_back(*address);
  }
  return functions;
}

}  // namespace pciinfo
