// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <set>
#include <stdexcept>
#include <string>

#include "tests/topology/made_machine.h"
#include "topology/slot_resolver.h"

namespace topology {

using Names = std::set<std::string>;

/// The resolution of a machine, with texts in the place of numbers.
class Resolved {
 public:
  explicit Resolved(MadeMachine& machine)
      : machine_(machine.Get()), tree_(machine_.functions), all_(ResolveSlots(machine_, tree_)) {}

  const Slot& SlotNamed(const std::string& name) const {
    for (const Slot& slot : all_.slots) {
      if (slot.name == name) return slot;
    }
    throw std::runtime_error("no slot " + name);
  }
  /// The addresses of the functions in a slot.
  Names In(const std::string& name) const {
    Names functions;
    for (const Occupant& occupant : all_.occupants) {
      if (all_.slots[occupant.slot].name == name) functions.insert(NameOf(occupant.function));
    }
    return functions;
  }
  Certainty CertaintyOf(const std::string& function) const {
    return OccupantAt(function).certainty;
  }
  std::string EvidenceOf(const std::string& function) const {
    return OccupantAt(function).evidence;
  }
  Place PlaceOf(const std::string& function) const {
    return all_.places[tree_.Find(At(function)).value()].place;
  }
  std::string ReasonOf(const std::string& function) const {
    return all_.places[tree_.Find(At(function)).value()].reason;
  }
  Names SlotNames() const {
    Names names;
    for (const Slot& slot : all_.slots) names.insert(slot.name);
    return names;
  }
  Names SharedFunctions() const {
    Names functions;
    for (const SharedPlace& shared : all_.shared) {
      for (const std::size_t function : shared.functions) functions.insert(NameOf(function));
    }
    return functions;
  }
  const Resolution& All() const { return all_; }

 private:
  std::string NameOf(std::size_t function) const { return ToText(tree_.At(function).address); }
  const Occupant& OccupantAt(const std::string& function) const {
    for (const Occupant& occupant : all_.occupants) {
      if (NameOf(occupant.function) == function) return occupant;
    }
    throw std::runtime_error(function + " is in no slot");
  }

  const Machine& machine_;
  BusTree tree_;
  Resolution all_;
};

/// An address that firmware writes, and a name for the test of it.
struct NamedAddress {
  const char* what;
  const char* address;
};

/// A root port to one card with two functions.
void AddCardBehindPort(MadeMachine& machine, const std::string& port = "0000:00:01.1",
                       unsigned bus = 1, int physicalNumber = 0);

/// The functions of the card behind that port.
inline const Names kCard{"0000:01:00.0", "0000:01:00.1"};

/// A switch of the board below port 64:00.0, with a card behind each of its two ports.
void AddBoardSwitch(MadeMachine& machine, int firstNumber, int secondNumber);

}  // namespace topology
