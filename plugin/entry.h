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

/// The plug-in's one object: says who the plug-in is, and turns each requested class into a
/// collector that lives for that class of that query only. The provider handle that it passes to
/// the collectors is set by the plug-in manager.
class VTQ_EXPORT TPciInfoCallbacks : public IPluginCallbacks, public IPluginBasicQueryCallbacks {
 public:
  /// Registers the object with the plug-in manager, which owns it from then on; without a plug-in
  /// manager it does nothing.
  TPciInfoCallbacks();
  ~TPciInfoCallbacks() override;

  int GetType() override;
  std::string GetName() override;
  std::string GetVersion() override;
  std::string GetInterfaceVersion() override;
  void PrepareForUnload() override;
  void Init() override;
  void DeInit() override;

  /// Serves the classes in their order, skipping silently what it does not know. An exception
  /// leaves it only when a class cannot tell its name or a collector cannot be made.
  void GetData(std::shared_ptr<ICIMNamespace> nameSpace,
               std::vector<std::shared_ptr<ICIMClass>>& classes) override;

  /// Lets `collector` (not owned) make its instances and logs how it went; whatever it throws ends
  /// here. Always 0.
  int RetrieveDataForClass(TPci* collector);
};

/// Kept for hosts that look it up; the plug-in neither reads nor writes it.
extern VTQ_EXPORT std::int32_t gStarted;

}  // namespace NQZMVTQ20
