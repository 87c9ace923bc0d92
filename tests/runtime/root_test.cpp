#include "runtime/root.h"

#include <gtest/gtest.h>

#include "framework/cim_namespace.h"
#include "framework/logger.h"
#include "framework/root_object.h"
#include "runtime/logger.h"
#include "runtime/plugin_manager.h"

namespace vtq {
namespace {

using NQZMVTQ20::ILogger;
using NQZMVTQ20::TRootObject;

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

}  // namespace
}  // namespace vtq
