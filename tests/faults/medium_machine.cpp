// SPDX-License-Identifier: Apache-2.0
#include "tests/faults/medium_machine.h"

#include <sys/mount.h>
#include <unistd.h>

#include <climits>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "framework/os_specific.h"
#include "runtime/command_replay.h"
#include "tests/fakes/machine_tree.h"
#include "tests/recipes/machine_recipe.h"

namespace {

constexpr const char* kRecordings = "/recordings";

void QualifyHostName() {
  char host[HOST_NAME_MAX + 1] = {};
  gethostname(host, sizeof host);
  const std::string name = host;
  MachineTree::Write("/hosts", "127.0.1.1\t" + name + ".example " + name + "\n");
  if (mount(MachineTree::Real("/hosts").c_str(), "/etc/hosts", nullptr, MS_BIND, nullptr) != 0) {
    throw std::runtime_error("cannot put a file in the place of /etc/hosts");
  }
}

std::string Run(const std::string& command) {
  return NQZMVTQ20::TOSSpecific::SpawnProcess(command, 60);
}

void Record(const std::string& command, const std::string& output) {
  MachineTree::Write(std::string(kRecordings) + "/" + command, output);
}

// The function that /proc/pci describes.
std::string WithoutLastLine(const std::string& listing) {
  return listing.substr(0, listing.rfind('\n', listing.size() - 2) + 1);
}

}  // namespace

void BecomeMediumMachine() {
  MachineTree::Clear();
  BuildMachine(ReadRecipe(MEDIUM_MACHINE), MachineTree::Real("/"));
  MachineTree::Write("/proc/pci",
                     "PCI devices found:\n  Bus  8, device   0, function  0:\n"
                     "    Ethernet controller: On the board (rev 1).\n");
  QualifyHostName();
  Use(Tools::kLive);
  Record("lspci", WithoutLastLine(Run("lspci")));
  for (const char* command : {"lspci -xxxx", "lspci -vvv"}) Record(command, Run(command));
  Use(Tools::kRecorded);
}

void Use(Tools tools) {
  const bool recorded = tools == Tools::kRecorded;
  vtq::ReplayCommandsFrom(recorded ? MachineTree::Real(kRecordings).string() : "");
}
