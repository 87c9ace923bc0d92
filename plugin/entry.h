// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "framework/export.h"
#include "framework/plugin_basic_query_callbacks.h"
#include "framework/plugin_callbacks.h"

class TPci;

namespace NQZMVTQ20 {

/// The only object of the plug-in that the framework knows. It returns the name and version of the
/// plug-in, and creates a collector for each requested class of a query. The plug-in manager sets
/// the provider handle that it passes to the collectors.
class VTQ_EXPORT TPciInfoCallbacks : public IPluginCallbacks, public IPluginBasicQueryCallbacks {
 public:
  /// Registers the object with the plug-in manager, which owns it from then on. Does nothing
  /// without a plug-in manager.
  TPciInfoCallbacks();
  ~TPciInfoCallbacks() override;

  int GetType() override;
  std::string GetName() override;
  std::string GetVersion() override;
  std::string GetInterfaceVersion() override;
  void PrepareForUnload() override;
  void Init() override;
  void DeInit() override;

  /// Provides the classes in their order; skips unknown classes silently. Throws only when a class
  /// does not return its name or a collector cannot be created.
  void GetData(std::shared_ptr<ICIMNamespace> nameSpace,
               std::vector<std::shared_ptr<ICIMClass>>& classes) override;

  /// Lets `collector` (not owned) create its instances and logs the result. Catches all exceptions
  /// of the collector. Always returns 0.
  int RetrieveDataForClass(TPci* collector);
};

/// Exported for hosts that look it up; the plug-in neither reads nor writes it.
extern VTQ_EXPORT std::int32_t gStarted;

}  // namespace NQZMVTQ20
