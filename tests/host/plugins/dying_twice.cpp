// A plug-in that dies of two classes.
#include <cstdlib>

#include "tests/host/plugins/fake_plugin.h"

namespace {

class DyingTwice final : public fake::FakePlugin {
  void Serve(NQZMVTQ20::ICIMClass& cimClass) override {
    const std::string name = cimClass.GetName({});
    if (name == "QZMSG_SystemSlot" || name == "QZMSG_OnBoardDevice") std::abort();
    FakePlugin::Serve(cimClass);
  }
};

}  // namespace

FAKE_PLUGIN(DyingTwice)
