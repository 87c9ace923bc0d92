// SPDX-License-Identifier: Apache-2.0
#include "tests/system/machine.h"

#include <fstream>
#include <stdexcept>

SystemMachine ReadMachine(const std::filesystem::path& file) {
  std::ifstream stream(file);
  if (!stream) throw std::runtime_error("cannot read the machine " + file.string());
  const nlohmann::json description = nlohmann::json::parse(stream);
  SystemMachine machine;
  machine.name = file.stem();
  machine.smbiosEntryPoint = std::to_string(description.at("smbiosEntryPoint").get<int>());
  machine.smbiosVersion = description.at("smbiosVersion");
  description.at("devices").get_to(machine.devices);
  machine.options = description.value("options", std::vector<std::string>());
  machine.kernelOptions = description.value("kernelOptions", "");
  machine.changes = description.value("changes", nlohmann::json::array());
  machine.records = description.at("records");
  machine.userNumbers = description.value("userNumbers", nlohmann::json());
  machine.expected = description.value("expected", nlohmann::json());
  machine.topology = description.at("topology");
  return machine;
}
