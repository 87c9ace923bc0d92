// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "framework/cim_class.h"
#include "framework/cim_instance.h"
#include "framework/cim_reference.h"
#include "framework/logger.h"
#include "framework/plugin_basic_query_callbacks.h"
#include "framework/plugin_callbacks.h"

namespace fake {

/// A plug-in that provides the seven classes of an invented machine: three devices, two bridges,
/// three slots (a device is in the first), the board, their associations and two listings. It logs
/// every call at debug severity. Other plug-ins derive from it and misbehave.
class FakePlugin : public NQZMVTQ20::IPluginCallbacks,
                   public NQZMVTQ20::IPluginBasicQueryCallbacks {
 public:
  int GetType() override { return 0; }
  std::string GetName() override { return "Fake Collector"; }
  std::string GetVersion() override { return "4.2"; }
  std::string GetInterfaceVersion() override { return "1.0"; }
  void PrepareForUnload() override;
  void Init() override;
  void DeInit() override;
  void GetData(std::shared_ptr<NQZMVTQ20::ICIMNamespace> nameSpace,
               std::vector<std::shared_ptr<NQZMVTQ20::ICIMClass>>& classes) override;

 protected:
  /// Creates the instances of one class.
  virtual void Serve(NQZMVTQ20::ICIMClass& cimClass);
};

void Log(int severity, const std::string& text);

/// Registers a plug-in with the plug-in manager, if there is one.
bool Register(FakePlugin* plugin);

}  // namespace fake

/// Makes a library register one object of `PluginClass` when it is loaded.
#define FAKE_PLUGIN(PluginClass)                                            \
  namespace {                                                               \
  [[maybe_unused]] const bool registered = fake::Register(new PluginClass); \
  }
