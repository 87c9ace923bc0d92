// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace NQZMVTQ20 {

/// The handle of one plug-in in the framework. Created and owned by the plug-in manager, which sets
/// it in the plug-in's object after registration and keeps it alive until the plug-in is unloaded.
/// A plug-in only passes it to the framework's libraries.
class TPluginManagerProvider {
 public:
  explicit TPluginManagerProvider(std::string pluginFile) : pluginFile_(std::move(pluginFile)) {}

  /// The file that the plug-in was loaded from.
  const std::string& GetPluginFile() const noexcept { return pluginFile_; }

 private:
  std::string pluginFile_;
};

}  // namespace NQZMVTQ20
