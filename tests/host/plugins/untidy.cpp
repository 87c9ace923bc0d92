// SPDX-License-Identifier: Apache-2.0

// A plug-in that keeps an instance without committing it.
#include "tests/host/plugins/fake_plugin.h"

namespace {

class Untidy final : public fake::FakePlugin {
  void Serve(NQZMVTQ20::ICIMClass& cimClass) override {
    FakePlugin::Serve(cimClass);
    if (cimClass.GetName({}) == "QZMSG_SystemBoard") kept_ = cimClass.CreateInstance({});
  }

  std::shared_ptr<NQZMVTQ20::ICIMInstance> kept_;
};

}  // namespace

FAKE_PLUGIN(Untidy)
