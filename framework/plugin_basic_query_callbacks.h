#pragma once

#include <memory>
#include <vector>

namespace NQZMVTQ20 {

class ICIMClass;
class ICIMNamespace;
class TPluginManagerProvider;

/// What a plug-in implements, beside IPluginCallbacks, to answer queries.
class IPluginBasicQueryCallbacks {
 public:
  virtual ~IPluginBasicQueryCallbacks() = default;

  /// Creates and commits the instances of `classes`, in their order. A class that the plug-in
  /// does not serve is skipped. What leaves by exception ends the query; instances committed
  /// before stay.
  virtual void GetData(std::shared_ptr<ICIMNamespace> nameSpace,
                       std::vector<std::shared_ptr<ICIMClass>>& classes) = 0;

  /// Called by the plug-in manager once the object is registered, and by nobody else. `provider`
  /// is not owned and outlives the object.
  void SetProvider(TPluginManagerProvider* provider) noexcept { provider_ = provider; }

 protected:
  /// The handle that this plug-in passes to the framework's libraries; null until the plug-in
  /// manager has set it.
  TPluginManagerProvider* provider_ = nullptr;
};

}  // namespace NQZMVTQ20
