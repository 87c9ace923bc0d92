// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "framework/os_specific.h"
#include "runtime/logger.h"
#include "runtime/plugin_manager.h"
#include "runtime/root.h"
#include "tests/runtime/fan_repository.h"

namespace vtq {

/// An installed plug-in manager, a core logger that stores its texts, and a repository of fans.
class PluginFixture : public testing::Test {
 protected:
  PluginFixture() {
    const auto logger = std::make_shared<Logger>();
    logger->AddSink([this](NQZMVTQ20::ILogger::EVTQLogSeverity, const std::string& text) {
      log_.push_back(text);
    });
    SetCoreLogger(logger);
    SetPluginManager(manager_);
  }

  ~PluginFixture() override {
    SetPluginManager(nullptr);
    manager_.reset();
    SetCoreLogger(nullptr);
    ::unsetenv("RUNTIME_TEST_MISDEED");
  }

  static std::string FileOf(const std::string& name) {
    return std::string(TEST_PLUGIN_DIRECTORY) + "/" + name + ".pi.so";
  }

  static bool IsMapped(const std::string& name) {
    const std::string maps = NQZMVTQ20::TOSSpecific::CaptureFile("/proc/self/maps");
    return maps.find("/" + name + ".pi.so") != std::string::npos;
  }

  static void AskFor(const std::string& misdeed) {
    ::setenv("RUNTIME_TEST_MISDEED", misdeed.c_str(), 1);
  }

  void Query(Plugin& plugin) {
    std::vector<std::shared_ptr<NQZMVTQ20::ICIMClass>> classes = {nameSpace_->Find("ACME_Fan")};
    plugin.GetData(nameSpace_, classes);
  }

  std::shared_ptr<Namespace> nameSpace_ = MakeFanNamespace();
  std::shared_ptr<PluginManager> manager_ = std::make_shared<PluginManager>();
  std::vector<std::string> log_;
};

}  // namespace vtq
