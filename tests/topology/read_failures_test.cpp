// SPDX-License-Identifier: Apache-2.0
#include "topology/read_failures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "runtime/logger.h"
#include "runtime/root.h"

namespace topology {
namespace {

using testing::ElementsAre;

std::vector<std::string> LoggedRecords() {
  std::vector<std::string> records;
  const auto logger = std::make_shared<vtq::Logger>();
  logger->AddSink([&records](auto, const std::string& text) { records.push_back(text); });
  vtq::SetCoreLogger(logger);
  LogReadFailures();
  vtq::SetCoreLogger(nullptr);
  return records;
}

TEST(ReadFailures, OfOneReasonAreOneRecordWithTheFirstFileByName) {
  std::thread other([] { NoteReadFailure("/sys/b", EACCES); });
  other.join();
  NoteReadFailure("/sys/a", EACCES);
  NoteReadFailure("/sys/c", EACCES);
  NoteReadFailure("/sys/d", EIO);
  EXPECT_THAT(
      LoggedRecords(),
      ElementsAre("/sys/d could not be read: Input/output error",
                  "/sys/a could not be read: Permission denied (and 2 more for this reason)"));
}

TEST(ReadFailures, AreLoggedOnce) {
  NoteReadFailure("/sys/a", EIO);
  LoggedRecords();
  EXPECT_THAT(LoggedRecords(), ElementsAre());
}

}  // namespace
}  // namespace topology
