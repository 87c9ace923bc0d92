// SPDX-License-Identifier: Apache-2.0
#include "host/record/machine_line.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/check/finding_view.h"
#include "host/check/machine_checks.h"
#include "host/console/safe_json.h"
#include "host/console/utf8.h"
#include "host/machine/function_details.h"
#include "host/record/overview_json.h"

namespace pciinfo {
namespace {

using Json = nlohmann::ordered_json;

void AddFact(Json& object, const char* name, const std::string& text) {
  if (!text.empty()) object[name] = ToUtf8(text);
}

/// Programs tell devices by such a text.
void AddIdentifier(Json& object, const char* name, const std::string& text) {
  if (!IsBlankIdentifier(text)) AddFact(object, name, text);
}

Json SystemDeviceJson(const SystemDevice& device) {
  Json object = {{"kind", device.kind}, {"name", ToUtf8(device.name)}};
  AddIdentifier(object, "hardwareAddress", device.hardwareAddress);
  AddFact(object, "model", device.model);
  AddIdentifier(object, "serialNumber", device.serialNumber);
  AddFact(object, "firmware", device.firmware);
  return object;
}

void AddFacts(Json& function, const FunctionFacts& facts) {
  AddIdentifier(function, "serialNumber", facts.serialNumber);
  AddFact(function, "productName", facts.productName);
  AddFact(function, "partNumber", facts.partNumber);
  AddIdentifier(function, "productSerialNumber", facts.productSerialNumber);
  for (const SystemDevice& device : facts.systemDevices)
    function["systemDevices"].push_back(SystemDeviceJson(device));
}

/// Adds to each function what the line has beyond the overview.
void AddFacts(Json& functions, const MachineFacts& facts) {
  for (Json& object : functions) {
    const auto address = ParseDomainAddress(object["address"].get_ref<const std::string&>());
    const MachineFunction* function = address ? facts.machine.Find(*address) : nullptr;
    if (function == nullptr) continue;
    AddFacts(object,
             facts.functions[static_cast<std::size_t>(function - facts.machine.functions.data())]);
  }
}

Json TextsJson(const std::vector<std::string>& texts) {
  auto array = Json::array();
  for (const std::string& text : texts) array.push_back(ToUtf8(text));
  return array;
}

}  // namespace

bool IsBlankIdentifier(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" -:");
  if (first == std::string::npos) return true;
  return std::string_view("0fFX").find(text[first]) != std::string_view::npos &&
         text.find_first_not_of(std::string(" -:") + text[first]) == std::string::npos;
}

std::vector<std::string> RecordedClasses() {
  std::vector<std::string> classes = MachineClasses();
  classes.emplace_back(kDetailsClass);
  return classes;
}

CollectedMachine CollectMachine(const vtq::Namespace& repository) {
  CollectedMachine machine;
  machine.stamp.ids = ReadMachineIds();
  machine.identity = ReadIdentity();
  machine.facts = ReadMachineFacts(repository);
  machine.findings = FindWith(MachineChecks(), machine.facts);
  return machine;
}

std::string MachineLine(const CollectedMachine& machine) {
  Json line = StampJson(machine.stamp);
  line["version"] = PCIINFO_VERSION;
  line.update(OverviewJson(
      {machine.identity, machine.stamp.systemName, "", machine.facts.machine, machine.notRead}));
  for (const char* places : {"slots", "shared", "unnamed"}) {
    for (Json& place : line[places]) AddFacts(place["functions"], machine.facts);
  }
  for (const char* place : {"onBoard", "unknown"}) AddFacts(line[place], machine.facts);
  line["findings"] = FindingsJson(machine.findings);
  line["troubles"] = TextsJson(machine.troubles);
  return SafeJson(line.dump());
}

MachineRecord RecordOf(const CollectedMachine& machine) {
  return ParseRecord(MachineLine(machine));
}

}  // namespace pciinfo
