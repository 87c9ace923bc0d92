// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "runtime/plugin_manager.h"
#include "runtime/repository.h"
#include "tests/faults/answers.h"

/// The classes, in the order in which they are collected.
const std::vector<std::string>& Classes();

/// Whether operations of the repository can fail.
enum class Repository { kPlain, kWithFaults };

/// Loads the built plug-in with the real framework.
class LoadedPlugin {
 public:
  explicit LoadedPlugin(Repository repository);
  LoadedPlugin(const LoadedPlugin&) = delete;
  LoadedPlugin& operator=(const LoadedPlugin&) = delete;
  /// Unloads the plug-in and destroys all its instances.
  ~LoadedPlugin();

  /// Collects a class. The armed fault may occur.
  void Ask(const std::string& className);

  /// The results of all collected classes, in that order, with the current instances.
  Answers GetAnswers() const;

  /// Number of instances that were created and are neither committed nor destroyed.
  std::size_t CountUncommitted() const;

 private:
  std::shared_ptr<vtq::PluginManager> manager_;
  std::shared_ptr<vtq::Namespace> repository_;
  std::shared_ptr<NQZMVTQ20::ICIMNamespace> nameSpace_;  ///< what the plug-in gets as the namespace
  Answers answers_;
};
