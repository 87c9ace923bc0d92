// SPDX-License-Identifier: Apache-2.0
#include "host/instance_diff/instance_diff_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

using nlohmann::json;
using NQZMVTQ20::TCIMValue;

constexpr const char* kBefore = "old\x1b";

template <class Write>
std::string Written(Write write, const InstanceDiff& result) {
  OutputToText output;
  write(output.Get(), DiffHeading{kBefore, "new", {"IRQ"}}, result);
  return output.Text();
}

class InstanceDiffView : public testing::Test {
 protected:
  void SetUp() override {
    after_->Find("QZMSG_PCIDevice")
        ->GetInstances()
        .front()
        ->SetProperty("IRQ", TCIMValue(static_cast<unsigned short>(7)), {});
    after_->Find("QZMSG_PCIDevice")
        ->GetInstances()
        .front()
        ->SetProperty("Description", TCIMValue("caf\xe9"), {});
    result_ = CompareInstances({before_.get(), true}, {after_.get(), true}, {});
    InstanceChange removed;
    removed.op = InstanceChange::Op::kRemove;
    removed.subject = "slot";
    removed.label = "X";
    removed.from = before_->Find("QZMSG_SystemSlot")->GetInstances().front();
    removed.text = "removed";
    result_.changes.push_back(removed);
    result_.onlyOld = {"QZMSG_PCIBridge"};
  }

  std::shared_ptr<vtq::Namespace> before_ = MakeFixedRepository();
  std::shared_ptr<vtq::Namespace> after_ = MakeFixedRepository();
  InstanceDiff result_;
};

TEST_F(InstanceDiffView, TextGroupsChangesByObject) {
  EXPECT_EQ(Written(&WriteInstanceDiff, result_),
            "--- old?\n+++ new\n"
            "~ function 01:00.0  10de:1b80  caf\xc3\xa9\n"
            "    description \"VGA compatible controller: NVIDIA Corporation GP104\" -> "
            "\"caf\xc3\xa9\"\n"
            "    interrupt (not set) -> 7\n"
            "- slot X\n"
            "    removed\n");
}

TEST_F(InstanceDiffView, JsonHasCompleteValues) {
  const json document = json::parse(Written(&WriteInstanceDiffJson, result_));
  EXPECT_EQ(document["before"], "old\x1b");
  EXPECT_EQ(document["ignored"], json({"IRQ"}));
  EXPECT_EQ(document["onlyBefore"], json({"QZMSG_PCIBridge"}));
  ASSERT_EQ(document["changes"].size(), 3U);
  const json& irq = document["changes"][1];
  EXPECT_EQ(irq["op"], "replace");
  EXPECT_EQ(irq["property"], "IRQ");
  EXPECT_TRUE(irq["old"].is_null());
  EXPECT_EQ(irq["new"], 7);
  EXPECT_EQ(irq["from"], irq["path"]);
  const json& removed = document["changes"][2];
  EXPECT_EQ(removed["op"], "remove");
  EXPECT_EQ(removed["instance"]["class"], "QZMSG_SystemSlot");
  EXPECT_EQ(removed["instance"]["path"], removed["from"]);
  EXPECT_FALSE(removed.contains("path"));
}

TEST_F(InstanceDiffView, SaysThatThereAreNoDifferences) {
  EXPECT_EQ(Written(&WriteInstanceDiff, {}), "No differences.\n");
  EXPECT_TRUE(json::parse(Written(&WriteInstanceDiffJson, {}))["changes"].empty());
}

}  // namespace
}  // namespace pciinfo
