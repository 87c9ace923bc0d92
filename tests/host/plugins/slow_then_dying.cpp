// A plug-in that is slow for the first class and crashes for two others.
#include <chrono>
#include <cstdlib>
#include <thread>

#include "tests/host/plugins/fake_plugin.h"

namespace {

class SlowThenDying final : public fake::FakePlugin {
  void Serve(NQZMVTQ20::ICIMClass& cimClass) override {
    const std::string name = cimClass.GetName({});
    if (name == "QZMSG_PCIDevice") std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    if (name == "QZMSG_SystemSlot" || name == "QZMSG_OnBoardDevice") std::abort();
    FakePlugin::Serve(cimClass);
  }
};

}  // namespace

FAKE_PLUGIN(SlowThenDying)
