#pragma once

#include <memory>
#include <string>
#include <vector>

#include "runtime/plugin_manager.h"
#include "runtime/repository.h"
#include "tests/faults/answers.h"

/// The classes, in the order in which they are asked for.
const std::vector<std::string>& Classes();

/// Whether the operations of the repository are among what can fail.
enum class Repository { kPlain, kWithFaults };

/// The built plug-in on the real framework, just loaded.
class LoadedPlugin {
 public:
  explicit LoadedPlugin(Repository repository);
  LoadedPlugin(const LoadedPlugin&) = delete;
  LoadedPlugin& operator=(const LoadedPlugin&) = delete;
  /// Ends and unloads the plug-in; nothing of it and of its instances is left.
  ~LoadedPlugin();

  /// Asks for a class. The fault that is armed may strike.
  void Ask(const std::string& className);

  /// The answers to all that was asked, in that order, with the instances as they are now.
  Answers GetAnswers() const;

  /// Instances that were made, and neither committed nor dropped.
  std::size_t CountUncommitted() const;

 private:
  std::shared_ptr<vtq::PluginManager> manager_;
  std::shared_ptr<vtq::Namespace> repository_;
  std::shared_ptr<NQZMVTQ20::ICIMNamespace> nameSpace_;  ///< what the plug-in sees of it
  Answers answers_;
};
