// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "plugin/collector.h"

/// Collector of the logical system board and of its associations with the functions on it.
class VTQ_EXPORT TSysBrd : public TPci {
 public:
  explicit TSysBrd(std::shared_ptr<NQZMVTQ20::ICIMClass> cimClass);
  TSysBrd(std::shared_ptr<NQZMVTQ20::ICIMClass> cimClass,
          NQZMVTQ20::TPluginManagerProvider* infoHandle);

  ~TSysBrd() override;
  using TPci::GetCIMInstances;
  std::vector<NQZMVTQ20::ICIMInstance*> GetCIMInstances(std::string className) override;

  /// Returns a single map, for the board. System keys that the framework does not know are empty
  /// texts.
  std::vector<TPropertyMap> PopulateSysbrdProperties();

  /// Returns a map for each PCI device, then for each bridge, that the framework holds and that is
  /// in no slot: its "UINumber" is 0 or cannot be read. Empty if the framework holds no board.
  std::vector<TPropertyMap> MakeDeviceBoardAssociation();
};
