// SPDX-License-Identifier: Apache-2.0
#include "host/diff/port_path.h"

#include <fmt/format.h>

namespace pciinfo {
namespace {

/// Saved instances may name each other as parents; no real path is longer.
constexpr int kMostPorts = 64;

std::string PathOf(const MachineFunction& function, const MachineModel& machine) {
  std::string path;
  const MachineFunction* place = &function;
  for (int ports = 0; ports < kMostPorts; ++ports) {
    path.insert(0, '/' + NumberOnBus(place->address.address));
    const MachineFunction* parent = place->parentPort ? machine.Find(*place->parentPort) : nullptr;
    if (parent == nullptr) break;
    place = parent;
  }
  return fmt::format("{:04x}:{:02x}{}", place->address.domain, place->address.address.bus, path);
}

}  // namespace

std::string NumberOnBus(const PciAddress& address) {
  return fmt::format("{:02x}.{:x}", address.device, address.function);
}

std::vector<std::string> PortPaths(const MachineModel& machine) {
  std::vector<std::string> paths;
  paths.reserve(machine.functions.size());
  for (const MachineFunction& function : machine.functions) {
    paths.push_back(PathOf(function, machine));
  }
  return paths;
}

}  // namespace pciinfo
