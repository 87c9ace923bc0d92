// SPDX-License-Identifier: Apache-2.0

// A plug-in that throws for some classes; one of the exceptions has its own type.
#include <stdexcept>

#include "tests/host/plugins/fake_plugin.h"

namespace {

struct NobodyKnows {};

class Throwing final : public fake::FakePlugin {
  void Serve(NQZMVTQ20::ICIMClass& cimClass) override {
    if (cimClass.GetName({}) == "QZMSG_PCIBridge") throw std::runtime_error("bridge out");
    if (cimClass.GetName({}) == "VTQ_PCISharedPort") throw std::runtime_error("port out");
    if (cimClass.GetName({}) == "QZMSG_SystemBoard") throw NobodyKnows();
    FakePlugin::Serve(cimClass);
  }
};

}  // namespace

FAKE_PLUGIN(Throwing)
