#pragma once

#include <memory>

#include "framework/export.h"

namespace NQZMVTQ20 {

class ICIMNamespace;
class ILogger;

/// The way to the framework's singletons.
class VTQ_EXPORT TRootObject {
 public:
  /// The core logger; never null (a logger that drops everything where the host set none).
  static std::shared_ptr<ILogger> GetCoreLogger();

  /// The plug-in manager, a TPluginManagerNamespace behind its base class; null where there is
  /// none. Release it before the library is unloaded.
  static std::shared_ptr<ICIMNamespace> GetPluginManager();
};

}  // namespace NQZMVTQ20
