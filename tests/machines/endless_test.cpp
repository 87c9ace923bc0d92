// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "tests/machines/machine.h"
#include "tests/machines/process.h"

namespace {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::StartsWith;

class EndlessTest : public MachineTest {
 protected:
  RunResult Collect() const {
    return RunToEnd({PCIINFO_PROGRAM, "instances", "--format", "jsonl", "--timeout", "8"});
  }
};
INSTANTIATE_TEST_SUITE_P(Machines, EndlessTest, testing::ValuesIn(EndlessMachines()), TestNameOf);

TEST_P(EndlessTest, ACollectionThatDoesNotEndIsStoppedAndNamed) {
  const RunResult result = Collect();
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(
      LinesOf(result.err),
      AllOf(Contains(StartsWith("pciinfo: QZMSG_PCIDevice: the plug-in was stopped after ")),
            Contains(StartsWith("pciinfo: QZMSG_PCIBridge: the plug-in was stopped after "))));
}

TEST_P(EndlessTest, WhatTheOtherClassesGiveIsPrinted) {
  const std::vector<std::string> instances = LinesOf(Collect().out);
  EXPECT_THAT(instances, Contains(HasSubstr("\"QZMSG_SystemBoard\"")));
  EXPECT_THAT(instances, Contains(HasSubstr("\"QZMSG_PCIRawData\"")));
}

}  // namespace
