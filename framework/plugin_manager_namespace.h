#pragma once

#include "framework/cim_namespace.h"

namespace NQZMVTQ20 {

class IPluginCallbacks;

/// The plug-in registry. It is reached as a namespace (TRootObject::GetPluginManager) and
/// recognised by its run-time type.
class TPluginManagerNamespace : public ICIMNamespace {
 public:
  /// Takes over `callbacks`, which must live on the heap. Called while the plug-in's library is
  /// being loaded, possibly from the object's own constructor: nothing is called on the object
  /// before the call returns. Throws TVTQException when the object is null; an object that is
  /// refused stays the caller's.
  virtual void RegisterPlugin(IPluginCallbacks* callbacks) = 0;
};

}  // namespace NQZMVTQ20
