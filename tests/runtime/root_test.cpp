// SPDX-License-Identifier: Apache-2.0
#include "runtime/root.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "framework/cim_namespace.h"
#include "framework/logger.h"
#include "framework/root_object.h"
#include "runtime/logger.h"
#include "runtime/plugin_manager.h"

namespace vtq {
namespace {

using NQZMVTQ20::ILogger;
using NQZMVTQ20::TRootObject;

using Records = std::vector<std::pair<int, std::string>>;

TEST(RootTest, StartsWithASilentLoggerAndNoPluginManager) {
  ASSERT_NE(TRootObject::GetCoreLogger(), nullptr);
  TRootObject::GetCoreLogger()->Write(ILogger::kError, "dropped");
  EXPECT_EQ(TRootObject::GetPluginManager(), nullptr);
}

TEST(RootTest, AnswersWhatWasSetUntilNullIsSet) {
  const auto logger = std::make_shared<Logger>();
  const auto manager = std::make_shared<PluginManager>();
  SetCoreLogger(logger);
  SetPluginManager(manager);
  EXPECT_EQ(TRootObject::GetCoreLogger(), logger);
  EXPECT_EQ(TRootObject::GetPluginManager(), manager);
  SetCoreLogger(nullptr);
  SetPluginManager(nullptr);
  EXPECT_NE(TRootObject::GetCoreLogger(), nullptr);
  EXPECT_NE(TRootObject::GetCoreLogger(), logger);
  EXPECT_EQ(TRootObject::GetPluginManager(), nullptr);
  EXPECT_EQ(logger.use_count(), 1);
  EXPECT_EQ(manager.use_count(), 1);
}

TEST(RootTest, ThePluginManagerIsRecognisedByItsRunTimeType) {
  SetPluginManager(std::make_shared<PluginManager>());
  EXPECT_NE(std::dynamic_pointer_cast<NQZMVTQ20::TPluginManagerNamespace>(
                TRootObject::GetPluginManager()),
            nullptr);
  SetPluginManager(nullptr);
}

TEST(RootTest, TheDirectCallWritesToTheCoreLogger) {
  Records records;
  const auto logger = std::make_shared<Logger>();
  logger->AddSink([&records](ILogger::EVTQLogSeverity severity,
                             const std::string& text) { records.emplace_back(severity, text); },
                  ILogger::kDebug);
  SetCoreLogger(logger);
  NQZMVTQ20::fdrWriteLog(3, "direct");
  NQZMVTQ20::fdrWriteLog(4, "taken by no sink");
  NQZMVTQ20::fdrWriteLog(3, nullptr);
  SetCoreLogger(nullptr);
  NQZMVTQ20::fdrWriteLog(0, "dropped");
  EXPECT_EQ(records, (Records{{3, "direct"}}));
}

TEST(RootTest, TheDirectCallLeavesTheChoiceToALoggerThatTellsNothing) {
  class AnyLogger final : public ILogger {
   public:
    void Write(EVTQLogSeverity severity, const std::string& text) noexcept override {
      records.emplace_back(severity, text);
    }
    Records records;
  };
  const auto logger = std::make_shared<AnyLogger>();
  SetCoreLogger(logger);
  NQZMVTQ20::fdrWriteLog(4, "a");
  NQZMVTQ20::fdrWriteLog(9, "b");
  NQZMVTQ20::fdrWriteLog(0, nullptr);
  SetCoreLogger(nullptr);
  EXPECT_EQ(logger->records, (Records{{4, "a"}, {9, "b"}}));
}

}  // namespace
}  // namespace vtq
