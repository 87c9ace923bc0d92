// SPDX-License-Identifier: Apache-2.0
#include "host/model/pci_function.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/console/text.h"
#include "host/formats/value_text.h"

namespace pciinfo {
namespace {

std::string HexId(const std::optional<unsigned>& id) {
  return id ? fmt::format("{:04x}", *id) : "????";
}

std::string LocationOf(const vtq::Instance& instance) {
  const std::string location = TextOf(instance, "Location");
  return location.empty() ? TextOf(instance, "DeviceID") : location;
}

}  // namespace

PciFunction ReadFunction(const vtq::Class& cimClass, const vtq::Instance& instance) {
  PciFunction function;
  function.path = instance.GetPath();
  function.kind = cimClass.GetSchema().name == "QZMSG_PCIBridge" ? "bridge" : "device";
  function.location = LocationOf(instance);
  function.address = ParseLocation(function.location);
  function.vendorId = NumberOf(instance, "VendorID");
  function.deviceId = NumberOf(instance, "PciDeviceID");
  function.revision = NumberOf(instance, "Revision");
  function.classCode = NumberOf(instance, "ClassCode");
  function.subclass = NumberOf(instance, "Subclass");
  function.programmingInterface = NumberOf(instance, "ProgrammingInterface");
  function.description = TextOf(instance, "Description");
  if (function.kind == "device") {
    function.subsystemVendorId = NumberOf(instance, "SubsystemVendorID");
    function.subsystemId = NumberOf(instance, "SubsystemID");
  }
  return function;
}

std::vector<PciFunction> ReadFunctions(const vtq::Namespace& repository) {
  std::vector<PciFunction> functions;
  for (const char* name : {"QZMSG_PCIDevice", "QZMSG_PCIBridge"}) {
    const std::shared_ptr<vtq::Class> cimClass = repository.Find(name);
    for (const auto& instance : cimClass->GetInstances()) {
      functions.push_back(ReadFunction(*cimClass, *instance));
    }
  }
  SortByAddress(functions);
  return functions;
}

void SortByAddress(std::vector<PciFunction>& functions) {
  std::stable_sort(functions.begin(), functions.end(), [](const auto& left, const auto& right) {
    if (!left.address || !right.address) return left.address.has_value() && !right.address;
    return *left.address < *right.address;
  });
}

std::string AddressText(const PciFunction& function) {
  return function.address ? FormatAddress(*function.address) : Printable(function.location);
}

std::string IdText(const PciFunction& function) {
  return HexId(function.vendorId) + ":" + HexId(function.deviceId);
}

}  // namespace pciinfo
