// SPDX-License-Identifier: Apache-2.0
#include "tests/host/plugins/fixed_machine.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "framework/add_to_vector_callback.h"
#include "framework/cim_instance.h"
#include "framework/cim_namespace.h"
#include "tests/host/plugins/fixed_topology.h"

namespace fake {
namespace {

using namespace NQZMVTQ20;

using Properties = std::vector<std::pair<const char*, TCIMValue>>;
using Instances = std::vector<std::shared_ptr<ICIMInstance>>;

TCIMValue U8(unsigned value) { return TCIMValue(static_cast<std::uint8_t>(value)); }
TCIMValue U16(unsigned value) { return TCIMValue(static_cast<std::uint16_t>(value)); }

TCIMValue Array(TCIMValue::TCIMType::ECIMType type, TCIMValue::TArray elements) {
  const auto count = static_cast<std::uint32_t>(elements.size());
  return TCIMValue(TCIMValue::TCIMType(type), count, std::move(elements));
}

TCIMValue Texts(const std::vector<std::string>& texts) {
  TCIMValue::TArray elements;
  for (const std::string& text : texts) elements.emplace_back(text);
  return Array(TCIMValue::TCIMType::kString, std::move(elements));
}

void Make(ICIMClass& cimClass, const Properties& properties) {
  const std::shared_ptr<ICIMInstance> instance = cimClass.CreateInstance({});
  for (const auto& [name, value] : properties) instance->SetProperty(name, value, {});
  instance->Commit({});
}

struct Function {
  const char* location;
  unsigned vendor;
  unsigned device;
  unsigned revision;
  unsigned baseClass;
  const char* description;
  unsigned slot;  // 0: none
};

Properties FunctionProperties(const std::string& className, const Function& function) {
  Properties properties = {
      {"SystemCreationClassName", TCIMValue("CIM_ComputerSystem")},
      {"SystemName", TCIMValue("box")},
      {"CreationClassName", TCIMValue(className)},
      {"DeviceID", TCIMValue(function.location)},
      {"Location", TCIMValue(function.location)},
      {"VendorID", U16(function.vendor)},
      {"PciDeviceID", U16(function.device)},
      {"Revision", U8(function.revision)},
      {"ClassCode", U8(function.baseClass)},
      {"Description", TCIMValue(function.description)},
  };
  if (function.slot != 0) properties.emplace_back("UINumber", U8(function.slot));
  return properties;
}

// Not in the order of their addresses.
constexpr Function kDevices[] = {
    {"PCI Bus  1, device   0, function  0", 0x10de, 0x1b80, 0xa1, 3,
     "VGA compatible controller: NVIDIA Corporation GP104", 1},
    {"PCI Bus  0, device  31, function  3", 0x8086, 0xa170, 0x31, 4, "Audio device: Fa\xe7onn\xe9",
     0},
    {"PCI Bus  0, device   2, function  0", 0x8086, 0x1912, 6, 3,
     "Display controller with a description that is so long that no line of a hundred columns "
     "could ever hold all of it",
     0},
};

constexpr Function kBridges[] = {
    {"PCI Bus  0, device   0, function  0", 0x8086, 0x191f, 7, 6, "Host bridge: Intel", 0},
    {"PCI Bus  0, device   1, function  0", 0x8086, 0x1901, 0, 6, "PCI bridge: Intel", 0},
};

void MakeDevices(ICIMClass& cimClass) {
  for (const Function& function : kDevices) {
    Properties properties = FunctionProperties("QZMSG_PCIDevice", function);
    properties.emplace_back("MEMAddress", Array(TCIMValue::TCIMType::kUint32,
                                                {TCIMValue(0xf7000000U), TCIMValue(0xe0000000U)}));
    Make(cimClass, properties);
  }
}

void MakeBridges(ICIMClass& cimClass) {
  for (const Function& function : kBridges) {
    Make(cimClass, FunctionProperties("QZMSG_PCIBridge", function));
  }
}

void MakeSlot(ICIMClass& cimClass, const char* tag, const char* designation, unsigned usage) {
  Make(cimClass, {{"CreationClassName", TCIMValue("QZMSG_SystemSlot")},
                  {"Tag", TCIMValue(tag)},
                  {"Number", U16(7)},
                  {"CurrentUsage", U16(usage)},
                  {"ConnectorType", Array(TCIMValue::TCIMType::kUint16, {U16(0xb6)})},
                  {"MaxDataWidth", U16(0x0d)},
                  {"SlotDesignation", TCIMValue(designation)},
                  {"SupportsHotPlug", TCIMValue(usage == 3)}});
}

void MakeSlots(ICIMClass& cimClass) {
  MakeSlot(cimClass, "Tag 1", "PCIEX16_1   ", 4);
  MakeSlot(cimClass, "Tag 2", "J\x01 a designation that never wants to end", 3);
  MakeSlot(cimClass, "Tag 3", nullptr, 9);
}

void MakeBoard(ICIMClass& cimClass) {
  Make(cimClass, {{"SystemCreationClassName", TCIMValue("CIM_ComputerSystem")},
                  {"SystemName", TCIMValue("box")},
                  {"CreationClassName", TCIMValue("QZMSG_SystemBoard")},
                  {"DeviceID", TCIMValue("SystemBoard1")},
                  {"ElementName", TCIMValue("SystemBoard1")}});
}

Instances Held(ICIMClass& cimClass, const char* name) {
  Instances instances;
  cimClass.GetNamespace({})->GetClass(name, {})->EnumerateInstances(
      TAddToVectorCallback<ICIMInstance>(instances), 0, {});
  return instances;
}

/// Associates the first instance of `antecedent` with the committed functions that have a slot, or
/// that have none.
void MakeAssociations(ICIMClass& cimClass, const char* antecedent, bool inSlot) {
  const Instances first = Held(cimClass, antecedent);
  if (first.empty()) return;
  for (const char* name : {"QZMSG_PCIDevice", "QZMSG_PCIBridge"}) {
    for (const auto& function : Held(cimClass, name)) {
      if (function->GetProperty("UINumber", {}).value.IsNull() == inSlot) continue;
      Make(cimClass, {{"Antecedent", TCIMValue(first.front()->GetObjectReference({}))},
                      {"Dependent", TCIMValue(function->GetObjectReference({}))}});
    }
  }
}

void MakeListings(ICIMClass& cimClass) {
  Make(cimClass, {{"Command", TCIMValue("lspci -xxxx")},
                  {"RawResult", Texts({"00:00.0 \"quoted\" \\ and\ttabbed", "", "caf\xe9"})}});
  Make(cimClass, {{"Command", TCIMValue("lspci -vvv")}});
}

}  // namespace

void MakeFixedInstances(ICIMClass& cimClass) {
  const std::string name = cimClass.GetName({});
  if (name == "QZMSG_PCIDevice") MakeDevices(cimClass);
  if (name == "QZMSG_PCIBridge") MakeBridges(cimClass);
  if (name == "QZMSG_SystemSlot") MakeSlots(cimClass);
  if (name == "QZMSG_SystemBoard") MakeBoard(cimClass);
  if (name == "QZMSG_DeviceInSlot") MakeAssociations(cimClass, "QZMSG_SystemSlot", true);
  if (name == "QZMSG_OnBoardDevice") MakeAssociations(cimClass, "QZMSG_SystemBoard", false);
  if (name == "QZMSG_PCIRawData") MakeListings(cimClass);
  MakeTopologyInstances(cimClass);
}

}  // namespace fake
