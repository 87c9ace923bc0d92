// A plug-in whose queries for two classes end by exceptions, one of them of a type of its own.
#include <stdexcept>

#include "tests/host/plugins/fake_plugin.h"

namespace {

struct NobodyKnows {};

class Throwing final : public fake::FakePlugin {
  void Serve(NQZMVTQ20::ICIMClass& cimClass) override {
    if (cimClass.GetName({}) == "QZMSG_PCIBridge") throw std::runtime_error("bridge out");
    if (cimClass.GetName({}) == "QZMSG_SystemBoard") throw NobodyKnows();
    FakePlugin::Serve(cimClass);
  }
};

}  // namespace

FAKE_PLUGIN(Throwing)
