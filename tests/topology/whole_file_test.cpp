// SPDX-License-Identifier: Apache-2.0
#include "topology/whole_file.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "runtime/logger.h"
#include "runtime/root.h"
#include "tests/runtime/temporary_directory.h"

namespace topology {
namespace {

TEST(WholeFile, ThatCannotBeReadIsLogged) {
  const vtq::TemporaryDirectory directory;
  std::vector<std::string> records;
  const auto logger = std::make_shared<vtq::Logger>();
  logger->AddSink([&records](auto, const std::string& text) { records.push_back(text); });
  vtq::SetCoreLogger(logger);
  const std::string file = directory.GetPath();  // root may read every file, but no directory
  EXPECT_EQ(ReadWhole(file), std::nullopt);
  vtq::SetCoreLogger(nullptr);
  EXPECT_EQ(records,
            std::vector<std::string>{"the file " + file + " cannot be read: Is a directory"});
}

TEST(WholeFile, IsReadToItsEnd) { EXPECT_EQ(ReadWhole("/proc/self/comm"), "topology_tests\n"); }

}  // namespace
}  // namespace topology
