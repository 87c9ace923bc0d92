// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "topology/machine.h"

namespace topology {

/// Builds machines for tests, a function at a time. Functions are kept sorted.
class MadeMachine {
 public:
  /// An endpoint of that class.
  Function& Card(const std::string& address, std::uint16_t classCode = 0x0200);
  /// A root port, or a switch port of another type, to the buses `secondary` to `subordinate`. It
  /// has the slot bit when `physicalNumber` is not negative.
  Function& Port(const std::string& address, unsigned secondary, unsigned subordinate,
                 int physicalNumber = 0, PortType type = PortType::kRootPort);
  /// A conventional bridge: no PCI Express capability.
  Function& Bridge(const std::string& address, unsigned secondary, unsigned subordinate);

  /// A slot record at `address` ("" for none) with the usage "in use".
  SlotRecord& Record(const std::string& designation, const std::string& address, unsigned id = 0);
  void KernelSlotAt(const std::string& name, const std::string& device);

  Machine& Get() { return machine_; }

 private:
  Function& Add(const std::string& address, std::uint16_t classCode);

  Machine machine_;
};

/// The address of a text that is one.
Address At(const std::string& text);

}  // namespace topology
