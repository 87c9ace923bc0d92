// SPDX-License-Identifier: Apache-2.0

// A plug-in on a machine without SMBIOS tables: no slots, which is not an error.
#include "tests/host/plugins/fake_plugin.h"

namespace {

class Slotless final : public fake::FakePlugin {
  void Serve(NQZMVTQ20::ICIMClass& cimClass) override {
    const std::string name = cimClass.GetName({});
    if (name == "QZMSG_PCIDevice") fake::Log(0, "Unable to open SMBIOS library error: 2");
    if (name == "QZMSG_SystemSlot") fake::Log(2, "SMBIOS library could not load. Error 2");
    if (name == "VTQ_PCIFunction") fake::Log(2, "SMBIOS tables not loaded: status 2");
    if (name != "QZMSG_SystemSlot" && name != "VTQ_PCISlot") FakePlugin::Serve(cimClass);
  }
};

}  // namespace

FAKE_PLUGIN(Slotless)
