// SPDX-License-Identifier: Apache-2.0
#include "tests/machines/collection.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>

#include "tests/fakes/machine_tree.h"
#include "tests/machines/process.h"

using nlohmann::json;

std::vector<json> Collection::Of(const std::string& className) const {
  std::vector<json> found;
  std::copy_if(instances.begin(), instances.end(), std::back_inserter(found),
               [&](const json& instance) { return instance.at("class") == className; });
  return found;
}

std::vector<json> Collection::Functions() const {
  std::vector<json> functions = Of("QZMSG_PCIDevice");
  for (const json& bridge : Of("QZMSG_PCIBridge")) functions.push_back(bridge);
  return functions;
}

bool Collection::HasLogged(const std::string& record) const {
  return std::find(log.begin(), log.end(), record) != log.end();
}

namespace {

Collection RunProgram(const std::vector<std::string>& classes) {
  const std::string logFile = MachineTree::Real("/log");
  std::filesystem::remove(logFile);
  std::vector<std::string> words = {PCIINFO_PROGRAM, "instances"};
  words.insert(words.end(), classes.begin(), classes.end());
  words.insert(words.end(), {"--format", "json", "--log-file", logFile});
  const RunResult run = RunToEnd(words);
  std::ifstream log(logFile);
  const std::string records(std::istreambuf_iterator<char>(log), {});
  return {run.status, run.err, json::parse(run.out).at("instances"), LinesOf(records)};
}

}  // namespace

const Collection& Collect(const Machine& machine, const std::vector<std::string>& classes) {
  static std::map<std::pair<std::string, std::vector<std::string>>, Collection> collected;
  const auto [place, isNew] = collected.try_emplace({machine.name, classes});
  if (isNew) place->second = RunProgram(classes);
  return place->second;
}

std::string AddressOf(const json& function) {
  const std::string location = function.at("properties").at("Location");
  unsigned bus = 0;
  unsigned device = 0;
  unsigned number = 0;
  if (std::sscanf(location.c_str(), "PCI Bus %u, device %u, function %u", &bus, &device, &number) !=
      3) {
    throw std::runtime_error("no location: " + location);
  }
  return fmt::format("{:02x}:{:02x}.{:x}", bus, device, number);
}

unsigned NumberOr(const json& instance, const std::string& property, unsigned otherwise) {
  return instance.at("properties").value(property, otherwise);
}
