// SPDX-License-Identifier: Apache-2.0
#include "tests/system/witnesses.h"

#include <algorithm>
#include <sstream>

namespace {

using nlohmann::json;

// Reads a line such as "\tBus Address: 0000:01:00.0" of a slot.
void TakeLine(const std::string& line, json* slot) {
  const std::size_t colon = line.find(": ");
  const std::string key = line.substr(0, colon);
  const std::string value = colon == std::string::npos ? "" : line.substr(colon + 2);
  if (key == "\tDesignation") (*slot)["designation"] = value;
  if (key == "\tID") (*slot)["id"] = std::stoi(value);
  if (key == "\tCurrent Usage") (*slot)["usage"] = value;
  if (key == "\t\tHot-plug devices are supported") (*slot)["hotPlug"] = true;
  if (key == "\tBus Address") (*slot)["at"] = value;
  if (key == "\tPeer Devices") (*slot)["peers"] = json::array();
  if (key.starts_with("\tPeer Device ")) (*slot)["peers"].push_back(value.substr(0, 12));
}

}  // namespace

std::vector<std::string> ReadLspci(const std::string& listing) {
  const std::string domain0 = "0000:";
  std::vector<std::string> functions;
  std::istringstream stream(listing);
  for (std::string line; std::getline(stream, line);) {
    std::string address, classCode, ids;
    std::istringstream(line) >> address >> classCode >> ids;
    if (address.starts_with(domain0)) address.erase(0, domain0.size());
    functions.push_back(address + " " + ids);
  }
  std::sort(functions.begin(), functions.end());
  return functions;
}

json ReadDmidecode(const std::string& listing) {
  json slots = json::array();
  std::istringstream stream(listing);
  for (std::string line; std::getline(stream, line);) {
    if (line == "System Slot Information") slots.push_back({{"hotPlug", false}});
    if (!slots.empty()) TakeLine(line, &slots.back());
  }
  return slots;
}
