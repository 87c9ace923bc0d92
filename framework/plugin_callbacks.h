// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace NQZMVTQ20 {

/// The interface that every plug-in implements. When its library is loaded, a plug-in creates one
/// object on the heap and registers it. The framework owns the object from then on and destroys it
/// by PrepareForUnload. All calls come on one thread, in the order Init, queries, DeInit,
/// PrepareForUnload. The order of the declarations is part of the binary interface.
class IPluginCallbacks {
 public:
  virtual ~IPluginCallbacks() = default;

  /// The kind of plug-in; 0 is a data provider.
  virtual int GetType() = 0;
  virtual std::string GetName() = 0;
  virtual std::string GetVersion() = 0;
  /// The version of the contract that the plug-in was compiled against, as "MAJOR.MINOR" (see
  /// interface_version.h). This function, those before it and the next one keep their positions in
  /// every version, so that a host can refuse a plug-in and destroy its object.
  virtual std::string GetInterfaceVersion() = 0;
  /// Destroys the object itself. After it the library is unloaded, or the process ends; code of the
  /// library must not be used any more.
  virtual void PrepareForUnload() = 0;
  virtual void Init() = 0;
  virtual void DeInit() = 0;
};

}  // namespace NQZMVTQ20
