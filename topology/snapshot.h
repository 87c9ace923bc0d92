// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "framework/plugin_manager_provider.h"
#include "topology/bus_tree.h"
#include "topology/slots.h"

namespace topology {

/// The machine at one moment, and what was concluded of it.
class Snapshot {
 public:
  /// Reads the kernel's files and the firmware's tables. `provider` may be null.
  static std::unique_ptr<Snapshot> Take(const NQZMVTQ20::TPluginManagerProvider* provider);

  const Machine& GetMachine() const { return machine_; }
  const BusTree& GetTree() const { return tree_; }
  const Resolution& GetResolution() const { return resolution_; }

 private:
  explicit Snapshot(Machine machine);

  Machine machine_;
  BusTree tree_;
  Resolution resolution_;
};

}  // namespace topology
