// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <set>

#include "topology/bus_tree.h"
#include "topology/slots.h"

namespace topology {

/// Finds the port of a slot record by the record's slot ID (DSP0134, 7.10.5), where the address of
/// the record does not tell it. Ports are numbered by kernel slots, by ACPI and in their own slot
/// capabilities. None of these is always right, so a numbering is believed only
///   - where it agrees with every record whose port is known by its address, and
///   - for a number that only one port has.
class SlotNumbers {
 public:
  /// `slots` are those of records, with the targets that their addresses gave. The arguments must
  /// outlive the object.
  SlotNumbers(const Machine& machine, const BusTree& tree, const std::vector<Slot>& slots);

  /// The target of a record by its ID; nothing when no numbering tells it.
  std::optional<Target> Find(const SlotRecord& record) const;
  /// The same among these ports only, which are sorted; a numbering need not agree with other
  /// records then.
  std::optional<Target> FindAmong(const SlotRecord& record,
                                  const std::vector<std::size_t>& ports) const;

 private:
  struct Numbering {
    explicit Numbering(const char* what) : name(what) {}
    void Add(std::uint64_t number, std::size_t port);

    const char* name;                                           ///< for the evidence
    std::set<std::pair<std::uint64_t, std::size_t>> portsOf;    ///< numbers and their ports
    std::set<std::pair<std::size_t, std::uint64_t>> numbersOf;  ///< the same by port
    bool trusted = true;
  };

  void AddPhysicalNumbers();
  void AddUserNumbers();
  void AddKernelSlots();
  /// The only port with the number of the record, of those that are `allowed`.
  template <class Allowed>
  std::optional<Target> FindIn(const Numbering& numbering, const SlotRecord& record,
                               const Allowed& allowed) const;
  void Distrust(const std::vector<Slot>& slots);
  bool IsContradicted(const Numbering& numbering, const Slot& slot) const;
  Target Fit(const SlotRecord& record, const Numbering& numbering, std::size_t port) const;

  const Machine& machine_;
  const BusTree& tree_;
  std::vector<Numbering> numberings_;  // the strongest first
};

}  // namespace topology
