// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>

#include "host/process/library_location.h"
#include "host/store/fleet_module.h"

namespace pciinfo {
namespace {

[[noreturn]] void TellMissing() {
  throw std::runtime_error(
      "databases need a part of this program that is not installed: install the package "
      "pciinfo-fleet; for a program that was built from source, install the packages "
      "libsoci-dev, libboost-dev, libsqlite3-dev, libpq-dev and libssl-dev and build it again");
}

std::string ModuleFile() {
  for (const std::string& place : LibraryPlaces(ProgramDirectory(), kFleetModule)) {
    if (std::filesystem::exists(place)) return place;
  }
  TellMissing();
}

// Never unloaded, because the objects that it makes need its code.
void* LoadModule() {
  if (void* module = dlopen(ModuleFile().c_str(), RTLD_NOW | RTLD_NODELETE)) return module;
  throw std::runtime_error(std::string("cannot load a part of this program (") + dlerror() +
                           "): install the package pciinfo-fleet again");
}

}  // namespace

void* FindInFleetModule(const char* name) {
  static void* const module = LoadModule();
  if (void* function = dlsym(module, name)) return function;
  throw std::runtime_error(std::string(kFleetModule) +
                           " belongs to another version of this program: install the package "
                           "pciinfo-fleet again");
}

std::unique_ptr<MachineStore> OpenMachineStore(const StoreSettings& settings) {
  const auto open = reinterpret_cast<decltype(&PciinfoOpenMachineStore)>(
      FindInFleetModule("PciinfoOpenMachineStore"));
  return std::unique_ptr<MachineStore>(open(settings));
}

}  // namespace pciinfo
