// SPDX-License-Identifier: Apache-2.0

// A plug-in whose raw listing has a quarter of a million lines, with sanitizers a quarter of these.
#include "tests/fakes/fewer_if_sanitized.h"
#include "tests/host/plugins/fake_plugin.h"

namespace {

using namespace NQZMVTQ20;

class LongListing final : public fake::FakePlugin {
  void Serve(ICIMClass& cimClass) override {
    if (cimClass.GetName({}) != "QZMSG_PCIRawData") return FakePlugin::Serve(cimClass);
    constexpr std::uint32_t kLines = FewerIfSanitized(250000);
    TCIMValue::TArray lines;
    for (std::uint32_t i = 0; i < kLines; ++i) lines.emplace_back("line " + std::to_string(i));
    const std::shared_ptr<ICIMInstance> listing = cimClass.CreateInstance({});
    listing->SetProperty("Command", TCIMValue("lspci -xxxx"), {});
    const TCIMValue::TCIMType text(TCIMValue::TCIMType::kString);
    listing->SetProperty("RawResult", TCIMValue(text, kLines, std::move(lines)), {});
    listing->Commit({});
  }
};

}  // namespace

FAKE_PLUGIN(LongListing)
