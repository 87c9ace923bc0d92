// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <vector>

#include "topology/bus_tree.h"
#include "topology/slots.h"

namespace topology {

/// The places to which ACPI gives a slot user number (_SUN). Some makers number the port, others
/// the card's first function, so both mean the same place. A number tells a place only where one
/// place has it, and the place has one number. Zero and all ones are what nobody filled in.
class AcpiSlots {
 public:
  AcpiSlots(const Machine& machine, const BusTree& tree);

  /// A place with its number; the target is likely, because firmware numbers soldered devices too.
  struct Numbered {
    std::uint64_t number = 0;
    Target target;
  };
  /// The slot behind a port; null when ACPI does not tell it.
  const Numbered* FindPort(std::size_t port) const;
  /// The slot of a device on a conventional bus, whose function number is 0.
  const Numbered* FindDevice(const Address& device) const;

 private:
  void Add(std::uint64_t number, const Target& target);
  const Numbered* Only(const std::vector<Numbered>& candidates) const;

  std::map<std::size_t, std::vector<Numbered>> ports_;
  std::map<Address, std::vector<Numbered>> devices_;
  std::map<std::uint64_t, unsigned> placesOf_;  // how many places have a number
};

}  // namespace topology
