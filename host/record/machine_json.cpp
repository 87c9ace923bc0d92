// SPDX-License-Identifier: Apache-2.0
#include "host/record/machine_json.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "host/console/safe_json.h"
#include "host/console/utf8.h"
#include "host/machine/names.h"
#include "host/model/smbios_names.h"

namespace pciinfo {
namespace {

using OrderedJson = nlohmann::ordered_json;

void AddText(OrderedJson& object, const char* name, const std::string& text) {
  if (!text.empty()) object[name] = ToUtf8(text);
}

template <class Value>
void AddValue(OrderedJson& object, const char* name, const std::optional<Value>& value) {
  if (value) object[name] = *value;
}

void AddAddress(OrderedJson& object, const char* name,
                const std::optional<DomainAddress>& address) {
  if (address) object[name] = FormatAddress(*address);
}

void AddTexts(OrderedJson& object, const char* name, const std::vector<std::string>& texts) {
  if (texts.empty()) return;
  for (const std::string& text : texts) object[name].push_back(ToUtf8(text));
}

void AddSmbiosCode(OrderedJson& object, const char* name, const std::optional<unsigned>& code,
                   std::string (*text)(unsigned)) {
  if (code) object[name] = OrderedJson{{"code", *code}, {"text", text(*code)}};
}

void AddIds(OrderedJson& object, const MachineFunction& function) {
  object["id"] = IdText(function);
  AddValue(object, "vendorID", function.vendorId);
  AddValue(object, "deviceID", function.deviceId);
  if (function.subsystemVendorId && function.subsystemId) {
    object["subsystem"] =
        fmt::format("{:04x}:{:04x}", *function.subsystemVendorId, *function.subsystemId);
    object["subsystemVendorID"] = *function.subsystemVendorId;
    object["subsystemID"] = *function.subsystemId;
  }
  AddValue(object, "revision", function.revision);
}

void AddClass(OrderedJson& object, const MachineFunction& function) {
  if (!function.baseClass) return;
  OrderedJson code = {{"base", *function.baseClass}};
  AddValue(code, "subclass", function.subclass);
  AddValue(code, "programmingInterface", function.programmingInterface);
  code["text"] = ToUtf8(ClassName(function));
  object["class"] = std::move(code);
}

void AddNames(OrderedJson& object, const MachineFunction& function) {
  object["name"] = ModelText(function);
  AddText(object, "vendor", function.vendorName);
  AddText(object, "device", function.deviceName);
  AddText(object, "subsystemVendor", function.subsystemVendorName);
  AddText(object, "subsystemDevice", function.subsystemName);
}

void AddLink(OrderedJson& object, const Link& link) {
  OrderedJson known = OrderedJson::object();
  AddValue(known, "width", link.width);
  AddText(known, "speed", link.speed);
  AddValue(known, "maxWidth", link.maxWidth);
  AddText(known, "maxSpeed", link.maxSpeed);
  if (!known.empty()) object["link"] = std::move(known);
}

const char* PlaceName(FunctionPlace place) {
  switch (place) {
    case FunctionPlace::kSlot:
      return "slot";
    case FunctionPlace::kSharedPort:
      return "one of several slots";
    case FunctionPlace::kUnnamedSlot:
      return "slot without a name";
    case FunctionPlace::kOnBoard:
      return "on board";
    case FunctionPlace::kUnknown:
      break;
  }
  return "unknown";
}

void AddPlace(OrderedJson& object, const MachineFunction& function, const MachineModel& machine) {
  object["place"] = PlaceName(function.place);
  AddText(object, "placeReason", function.placeReason);
  if (!function.slot) return;
  object["slot"] = ToUtf8(machine.slots[*function.slot].name);
  AddText(object, "certainty", function.certainty);
  AddText(object, "evidence", function.evidence);
}

const char* StateName(SlotState state) {
  switch (state) {
    case SlotState::kOccupied:
      return "occupied";
    case SlotState::kEmpty:
      return "empty";
    case SlotState::kUnknown:
      break;
  }
  return "unknown";
}

void AddFunctions(OrderedJson& object, const std::vector<std::size_t>& places,
                  const MachineModel& machine) {
  object["functions"] = OrderedJson::array();
  for (const MachineFunction* function : machine.FunctionsOf(places)) {
    object["functions"].push_back(FunctionJson(*function, machine));
  }
}

void AddRecord(OrderedJson& object, const MachineSlot& slot) {
  AddSmbiosCode(object, "type", slot.type, ConnectorTypeText);
  AddSmbiosCode(object, "width", slot.width, SlotWidthText);
  AddSmbiosCode(object, "length", slot.length, SlotLengthText);
  AddSmbiosCode(object, "usage", slot.usage, SlotUsageText);
  AddValue(object, "id", slot.id);
  AddValue(object, "recordHandle", slot.recordHandle);
  AddValue(object, "hotPlug", slot.hotPlug);
  AddText(object, "firmwareAddress", slot.firmwareAddress);
  AddTexts(object, "peerAddresses", slot.peerAddresses);
}

void AddPorts(OrderedJson& object, const MachineSlot& slot) {
  AddText(object, "kernelSlot", slot.kernelSlot);
  object["ports"] = OrderedJson::array();
  AddTexts(object, "ports", slot.ports);
  AddText(object, "noPortBecause", slot.noPortBecause);
  AddValue(object, "physicalNumber", slot.physicalNumber);
  AddValue(object, "portHotPlug", slot.portHotPlug);
  AddValue(object, "surpriseRemoval", slot.surpriseRemoval);
  AddValue(object, "cardPresent", slot.cardPresent);
  AddLink(object, slot.link);
  AddValue(object, "numaNode", slot.numaNode);
  AddText(object, "outerSlot", slot.outerSlot);
}

OrderedJson FunctionsJson(const MachineModel& machine, FunctionPlace place) {
  auto array = OrderedJson::array();
  for (const MachineFunction* function : machine.FunctionsAt(place)) {
    array.push_back(FunctionJson(*function, machine));
  }
  return array;
}

OrderedJson SlotsJson(const MachineModel& machine, bool isNamed) {
  auto array = OrderedJson::array();
  for (const MachineSlot& slot : machine.slots) {
    if (slot.IsNamed() == isNamed) array.push_back(SlotJson(slot, machine));
  }
  return array;
}

OrderedJson SharedPortJson(const SharedPort& shared, const MachineModel& machine) {
  OrderedJson object = {{"port", ToUtf8(shared.port)}, {"slots", OrderedJson::array()}};
  AddTexts(object, "slots", shared.slots);
  AddText(object, "evidence", shared.evidence);
  AddFunctions(object, shared.functions, machine);
  return object;
}

OrderedJson ConflictsJson(const MachineModel& machine) {
  OrderedJson conflicts = OrderedJson::array();
  for (const MachineSlot& slot : machine.slots) {
    for (const std::string& text : slot.conflicts) {
      conflicts.push_back({{"slot", ToUtf8(slot.name)}, {"text", ToUtf8(text)}});
    }
  }
  return conflicts;
}

}  // namespace

OrderedJson FunctionJson(const MachineFunction& function, const MachineModel& machine) {
  OrderedJson object = {{"address", FormatAddress(function.address)},
                        {"kind", function.IsBridge() ? "bridge" : "device"}};
  AddNames(object, function);
  AddIds(object, function);
  AddClass(object, function);
  AddText(object, "portType", function.portType);
  AddAddress(object, "parentPort", function.parentPort);
  if (function.buses) {
    object["secondaryBus"] = function.buses->secondary;
    object["subordinateBus"] = function.buses->subordinate;
  }
  AddLink(object, function.link);
  AddText(object, "driver", function.driver);
  AddValue(object, "numaNode", function.numaNode);
  AddAddress(object, "physicalFunction", function.physicalFunction);
  AddPlace(object, function, machine);
  return object;
}

OrderedJson SlotJson(const MachineSlot& slot, const MachineModel& machine) {
  OrderedJson object = {{"name", ToUtf8(slot.name)}};
  // The firmware's own text may be missing or stand for a missing one.
  if (slot.source == "SMBIOS record") AddText(object, "designation", NameIn(slot.name));
  AddText(object, "source", slot.source);
  object["state"] = StateName(slot.state);
  AddRecord(object, slot);
  AddPorts(object, slot);
  AddTexts(object, "conflicts", slot.conflicts);
  AddFunctions(object, slot.functions, machine);
  return object;
}

OrderedJson MachineJson(const MachineModel& machine) {
  auto shared = OrderedJson::array();
  for (const SharedPort& port : machine.shared) shared.push_back(SharedPortJson(port, machine));
  return {{"slots", SlotsJson(machine, true)},
          {"shared", std::move(shared)},
          {"onBoard", FunctionsJson(machine, FunctionPlace::kOnBoard)},
          {"unnamed", SlotsJson(machine, false)},
          {"unknown", FunctionsJson(machine, FunctionPlace::kUnknown)},
          {"conflicts", ConflictsJson(machine)}};
}

void WriteJsonLines(Output& output, const OrderedJson& object) {
  const char* separator = "{";
  for (const auto& [name, value] : object.items()) {
    output.Write(separator + OrderedJson(name).dump() + ":");
    separator = ",\n";
    if (!value.is_array() || value.empty()) {
      output.Write(SafeJson(value.dump()));
      continue;
    }
    const char* before = "[\n";
    for (const OrderedJson& element : value) {
      output.Write(before + SafeJson(element.dump()));
      before = ",\n";
    }
    output.Write("\n]");
  }
  output.Write("}\n");
}

}  // namespace pciinfo
