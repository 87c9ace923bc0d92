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

bool HasDevice(const PropertyReader& reader, const vtq::Instance& instance,
               const std::string& name) {
  constexpr const char* kNames[] = {"NetworkInterfaces", "BlockDevices",      "NvmeControllers",
                                    "DrmDevices",        "InfinibandDevices", "ScsiHosts"};
  return std::any_of(std::begin(kNames), std::end(kNames), [&](const char* property) {
    const std::vector<std::string> devices = reader.Texts(instance, property);
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
