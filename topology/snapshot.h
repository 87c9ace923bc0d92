// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "framework/plugin_manager_provider.h"
#include "topology/bus_tree.h"
#include "topology/pci_names.h"
#include "topology/slots.h"

namespace topology {

/// The machine at one moment, and what was concluded of it.
class Snapshot {
 public:
  /// Reads the kernel's files, the firmware's tables and the names of IDs. `provider` may be null.
  static std::unique_ptr<Snapshot> Take(const NQZMVTQ20::TPluginManagerProvider* provider);

  const Machine& GetMachine() const { return machine_; }
  const BusTree& GetTree() const { return tree_; }
  const Resolution& GetResolution() const { return resolution_; }
  /// Empty where pciutils' file of names is not installed.
  const PciNames& GetNames() const { return names_; }

 private:
  Snapshot(Machine machine, PciNames names);

  Machine machine_;
  BusTree tree_;
  Resolution resolution_;
  PciNames names_;
};

}  // namespace topology
