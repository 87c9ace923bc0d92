// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "framework/export.h"

namespace NQZMVTQ20 {

class ICIMNamespace;
class ILogger;

/// Returns the framework's singletons.
class VTQ_EXPORT TRootObject {
 public:
  /// The core logger; never null (if the host has set none, a logger that drops everything).
  static std::shared_ptr<ILogger> GetCoreLogger();

  /// The plug-in manager, a TPluginManagerNamespace; null if there is none. Release the pointer
  /// before the library is unloaded.
  static std::shared_ptr<ICIMNamespace> GetPluginManager();
};

}  // namespace NQZMVTQ20
