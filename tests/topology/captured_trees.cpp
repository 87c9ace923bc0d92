// SPDX-License-Identifier: Apache-2.0
#include "tests/topology/captured_trees.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/fakes/run_process.h"
#include "tests/runtime/temporary_directory.h"

std::size_t CompareCaptures(const std::string& captures,
                            const std::function<std::size_t(const std::string& root)>& compare) {
  std::size_t compared = 0;
  for (const auto& entry : std::filesystem::directory_iterator(captures)) {
    const vtq::TemporaryDirectory directory;
    const std::string root = directory.GetPath();
    EXPECT_EQ(RunProcess({"tar", "-xf", entry.path(), "-C", root}).status, 0) << entry.path();
    if (std::filesystem::exists(root + "/sys/bus/pci/devices")) compared += compare(root);
  }
  return compared;
}
