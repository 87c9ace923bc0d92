// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "tests/fakes/machine_tree.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (!GTEST_FLAG_GET(list_tests)) MachineTree::Enter();
  return RUN_ALL_TESTS();
}
