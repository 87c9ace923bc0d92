// SPDX-License-Identifier: Apache-2.0
#include "host/collect/query_order.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/base/errors.h"
#include "tests/fakes/pci_schema.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

QueryPlan Plan(const std::vector<std::string>& asked) { return PlanQuery(PciSchema(), asked); }

TEST(QueryOrder, NothingAskedForMeansAllClassesInTheirUsualOrder) {
  const QueryPlan plan = Plan({});
  EXPECT_THAT(plan.print, ElementsAre("QZMSG_PCIDevice", "QZMSG_PCIBridge", "QZMSG_SystemSlot",
                                      "QZMSG_SystemBoard", "QZMSG_DeviceInSlot",
                                      "QZMSG_OnBoardDevice", "QZMSG_PCIRawData"));
  EXPECT_EQ(plan.collect, plan.print);
}

TEST(QueryOrder, AnAssociationCollectsTheClassesThatItJoinsFirst) {
  const QueryPlan plan = Plan({"QZMSG_DeviceInSlot"});
  EXPECT_THAT(plan.collect, ElementsAre("QZMSG_SystemSlot", "QZMSG_PCIDevice", "QZMSG_PCIBridge",
                                        "QZMSG_DeviceInSlot"));
  EXPECT_THAT(plan.print, ElementsAre("QZMSG_DeviceInSlot"));
}

TEST(QueryOrder, PrintingKeepsTheRequestedOrder) {
  const QueryPlan plan = Plan({"QZMSG_OnBoardDevice", "QZMSG_PCIRawData", "QZMSG_PCIBridge"});
  EXPECT_THAT(plan.collect, ElementsAre("QZMSG_SystemBoard", "QZMSG_PCIDevice", "QZMSG_PCIBridge",
                                        "QZMSG_OnBoardDevice", "QZMSG_PCIRawData"));
  EXPECT_THAT(plan.print,
              ElementsAre("QZMSG_OnBoardDevice", "QZMSG_PCIRawData", "QZMSG_PCIBridge"));
}

TEST(QueryOrder, AClassNamedTwiceIsCollectedAndPrintedOnce) {
  const QueryPlan plan = Plan({"QZMSG_PCIBridge", "QZMSG_PCIDevice", "QZMSG_PCIBridge"});
  EXPECT_THAT(plan.collect, ElementsAre("QZMSG_PCIBridge", "QZMSG_PCIDevice"));
  EXPECT_THAT(plan.print, ElementsAre("QZMSG_PCIBridge", "QZMSG_PCIDevice"));
}

TEST(QueryOrder, ClassesSharedByTwoAssociationsAreCollectedOnce) {
  EXPECT_THAT(Plan({"QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice"}).collect,
              ElementsAre("QZMSG_SystemSlot", "QZMSG_PCIDevice", "QZMSG_PCIBridge",
                          "QZMSG_DeviceInSlot", "QZMSG_SystemBoard", "QZMSG_OnBoardDevice"));
}

TEST(QueryOrder, AssociationsDeclaredFirstStillComeAfterWhatTheyJoin) {
  using NQZMVTQ20::TCIMValue;
  const TCIMValue::TCIMType reference(TCIMValue::TCIMType::kReference);
  const std::vector<vtq::ClassSchema> declared = {
      {"Link", "", "", {{"End", reference, false, true, {"Thing", "Link"}, ""}}},
      {"Thing", "", "", {}}};
  EXPECT_THAT(PlanQuery(declared, {}).print, ElementsAre("Thing", "Link"));
}

TEST(QueryOrder, ClassesAreFoundInAnyCase) {
  EXPECT_THAT(Plan({"qzmsg_pcibridge", "QZMSG_PCIBridge"}).print, ElementsAre("QZMSG_PCIBridge"));
}

TEST(QueryOrder, AnUnknownClassIsAnErrorThatListsTheKnownOnes) {
  try {
    Plan({"QZMSG_PCIBridge", "QZMSG_PCIDevices"});
    FAIL() << "no error";
  } catch (const UsageError& error) {
    EXPECT_THAT(error.what(), HasSubstr("\"QZMSG_PCIDevices\""));
    for (const vtq::ClassSchema& schema : PciSchema()) {
      EXPECT_THAT(error.what(), HasSubstr(schema.name));
    }
  }
}

}  // namespace
}  // namespace pciinfo
