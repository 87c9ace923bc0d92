// SPDX-License-Identifier: Apache-2.0

// A plug-in that provides all classes and logs the records of a machine with many troubles.
#include "framework/exception.h"
#include "framework/os_specific.h"
#include "tests/host/plugins/fake_plugin.h"

namespace {

using namespace NQZMVTQ20;

class Grumbling final : public fake::FakePlugin {
  void Serve(ICIMClass& cimClass) override {
    const std::string name = cimClass.GetName({});
    if (name == "QZMSG_PCIDevice" || name == "QZMSG_PCIBridge") GrumbleAboutFunctions();
    if (name == "QZMSG_SystemSlot") fake::Log(2, "SMBIOS library could not load. Error 4");
    if (name == "VTQ_PCIFunction") {
      fake::Log(2, "SMBIOS tables not loaded: status 4");
      fake::Log(2, "a fan has stopped");
    }
    if (name == "QZMSG_PCIRawData") return FailToList();
    FakePlugin::Serve(cimClass);
  }

  static void GrumbleAboutFunctions() {
    fake::Log(0, "Unable to open SMBIOS library error: 4");
    fake::Log(0, "Exiting correlateDeviceAndSlot");
    fake::Log(0, "Exiting correlateDeviceAndSlot");
    fake::Log(2, "Could not open PCI description file.");
    fake::Log(2, "Could not open PCI file./proc/bus/pci/00/1e.0");
  }

  static void FailToList() {
    try {
      TOSSpecific::SpawnProcess("no-such-listing-tool", 5);
    } catch (const TVTQException&) {
      fake::Log(2, "PCIInfo plugin threw unknown exception");
    }
  }
};

}  // namespace

FAKE_PLUGIN(Grumbling)
