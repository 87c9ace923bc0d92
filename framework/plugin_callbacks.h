#pragma once

#include <string>

namespace NQZMVTQ20 {

/// What every plug-in implements. A plug-in makes one object on the heap when its library is
/// loaded and registers it; the framework owns it from then on and ends its life with
/// PrepareForUnload. All calls come on one thread, in the order Init, queries, DeInit,
/// PrepareForUnload. The order of the declarations is the binary interface.
class IPluginCallbacks {
 public:
  virtual ~IPluginCallbacks() = default;

  /// The kind of plug-in; 0 is a data provider.
  virtual int GetType() = 0;
  virtual std::string GetName() = 0;
  virtual std::string GetVersion() = 0;
  /// The version of the contract that the plug-in was compiled against, as "MAJOR.MINOR" (see
  /// interface_version.h). This function and those before and right after it keep their places in
  /// every version, so that a host can refuse a plug-in and end its object.
  virtual std::string GetInterfaceVersion() = 0;
  /// Destroys the object itself. Next, the library is unloaded, or the process ends without that;
  /// nothing of the library may be used after.
  virtual void PrepareForUnload() = 0;
  virtual void Init() = 0;
  virtual void DeInit() = 0;
};

}  // namespace NQZMVTQ20
