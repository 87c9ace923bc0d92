// SPDX-License-Identifier: Apache-2.0
#include "tests/system/inventory.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <stdexcept>

namespace {

using nlohmann::json;

// DSP0134 7.10.3
const std::map<int, std::string> kUsages = {{3, "Available"}, {4, "In Use"}};

std::vector<json> InstancesOf(const json& instances, const std::string& className) {
  std::vector<json> found;
  for (const json& instance : instances.at("instances")) {
    if (instance.at("class") == className) found.push_back(instance);
  }
  return found;
}

std::vector<json> FunctionsOf(const json& instances) {
  std::vector<json> functions = InstancesOf(instances, "QZMSG_PCIDevice");
  const std::vector<json> bridges = InstancesOf(instances, "QZMSG_PCIBridge");
  functions.insert(functions.end(), bridges.begin(), bridges.end());
  return functions;
}

std::string AddressOf(const json& function) {
  const std::string location = function.at("properties").at("Location");
  unsigned bus = 0;
  unsigned device = 0;
  unsigned number = 0;
  if (std::sscanf(location.c_str(), "PCI Bus %u, device %u, function %u", &bus, &device, &number) !=
      3) {
    throw std::runtime_error("not a location: " + location);
  }
  char text[32];
  std::snprintf(text, sizeof text, "%02x:%02x.%x", bus, device, number);
  return text;
}

std::string AddressAndIds(const json& function) {
  const json& properties = function.at("properties");
  char ids[32];
  std::snprintf(ids, sizeof ids, " %04x:%04x", properties.at("VendorID").get<unsigned>(),
                properties.at("PciDeviceID").get<unsigned>());
  return AddressOf(function) + ids;
}

std::string Describe(const json& function) {
  const bool isBridge = function.at("class") == "QZMSG_PCIBridge";
  return AddressAndIds(function) + (isBridge ? " bridge" : " device");
}

// Returns the functions that an association joins with the instance at the path `antecedent`.
std::vector<std::string> JoinedWith(const json& antecedent, const std::string& association,
                                    const json& instances) {
  std::map<std::string, std::string> descriptions;
  for (const json& function : FunctionsOf(instances)) {
    descriptions[function.at("path")] = Describe(function);
  }
  std::vector<std::string> joined;
  for (const json& instance : InstancesOf(instances, association)) {
    const json& properties = instance.at("properties");
    if (properties.at("Antecedent") != antecedent) continue;
    joined.push_back(descriptions.at(properties.at("Dependent")));
  }
  std::sort(joined.begin(), joined.end());
  return joined;
}

json TellSlot(const json& slot, const json& instances) {
  const json& properties = slot.at("properties");
  return {{"tag", properties.at("Tag")},
          {"designation", properties.at("SlotDesignation")},
          {"id", properties.at("Number")},
          {"usage", kUsages.at(properties.at("CurrentUsage"))},
          {"hotPlug", properties.at("SupportsHotPlug")},
          {"functions", JoinedWith(slot.at("path"), "QZMSG_DeviceInSlot", instances)}};
}

}  // namespace

json ReadInventory(const json& instances) {
  json slots = json::array();
  for (const json& slot : InstancesOf(instances, "QZMSG_SystemSlot")) {
    slots.push_back(TellSlot(slot, instances));
  }
  const std::vector<json> boards = InstancesOf(instances, "QZMSG_SystemBoard");
  if (boards.size() != 1) throw std::runtime_error("there is not one board");
  const json onBoard = JoinedWith(boards[0].at("path"), "QZMSG_OnBoardDevice", instances);
  return {{"slots", slots}, {"onBoard", onBoard}};
}

std::vector<std::string> ReadSlotNumbers(const json& instances) {
  std::vector<std::string> numbers;
  for (const json& function : FunctionsOf(instances)) {
    const json& properties = function.at("properties");
    if (!properties.contains("UINumber")) continue;
    numbers.push_back(AddressOf(function) + " " + properties["UINumber"].dump());
  }
  std::sort(numbers.begin(), numbers.end());
  return numbers;
}

std::vector<std::string> ReadFunctions(const json& instances) {
  std::vector<std::string> functions;
  for (const json& function : FunctionsOf(instances)) functions.push_back(AddressAndIds(function));
  std::sort(functions.begin(), functions.end());
  return functions;
}
