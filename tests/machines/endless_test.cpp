#include "tests/machines/machine.h"
#include "tests/machines/process.h"

namespace {

using namespace std::chrono_literals;

class EndlessTest : public MachineTest {};
INSTANTIATE_TEST_SUITE_P(Machines, EndlessTest, testing::ValuesIn(EndlessMachines()), TestNameOf);

TEST_P(EndlessTest, CollectionIsStillRunningAfterASecond) {
  EXPECT_TRUE(RunsLongerThan(1s, {PCIINFO_PROGRAM, "instances", "--format", "json"}));
}

}  // namespace
