// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/cim_namespace.h"

namespace NQZMVTQ20 {

class IPluginCallbacks;

/// The plug-in registry. TRootObject::GetPluginManager returns it as a namespace; use
/// dynamic_pointer_cast to get this type.
class TPluginManagerNamespace : public ICIMNamespace {
 public:
  /// Takes ownership of `callbacks`, which must be on the heap. Called while the plug-in's library
  /// is being loaded, possibly from the object's own constructor, so no function of the object is
  /// called before this call returns. Throws TVTQException when the object is null; the caller
  /// keeps ownership of a refused object.
  virtual void RegisterPlugin(IPluginCallbacks* callbacks) = 0;
};

}  // namespace NQZMVTQ20
