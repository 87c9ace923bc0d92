// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <vector>

namespace NQZMVTQ20 {

class ICIMClass;
class ICIMNamespace;
class TPluginManagerProvider;

/// The interface that a plug-in implements, besides IPluginCallbacks, to answer queries.
class IPluginBasicQueryCallbacks {
 public:
  virtual ~IPluginBasicQueryCallbacks() = default;

  /// Creates and commits the instances of `classes`, in their order. Skips classes that the plug-in
  /// does not provide. An exception ends the query; instances that were committed before stay.
  virtual void GetData(std::shared_ptr<ICIMNamespace> nameSpace,
                       std::vector<std::shared_ptr<ICIMClass>>& classes) = 0;

  /// Called only by the plug-in manager, after the object is registered. `provider` is not owned
  /// and outlives the object.
  void SetProvider(TPluginManagerProvider* provider) noexcept { provider_ = provider; }

 protected:
  /// The handle that this plug-in passes to the framework's libraries; null until the plug-in
  /// manager has set it.
  TPluginManagerProvider* provider_ = nullptr;
};

}  // namespace NQZMVTQ20
