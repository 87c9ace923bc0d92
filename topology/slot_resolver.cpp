// SPDX-License-Identifier: Apache-2.0
#include "topology/slot_resolver.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "topology/slot_conflicts.h"
#include "topology/slot_numbers.h"
#include "topology/slot_places.h"
#include "topology/slot_targets.h"

namespace topology {
namespace {

/// The downstream ports of the switch on the link below `port`.
std::vector<std::size_t> PortsOfSwitchBelow(const BusTree& tree, std::size_t port) {
  std::vector<std::size_t> ports;
  for (const std::size_t child : tree.GetChildren(port)) {
    for (const std::size_t inner : tree.GetChildren(child)) {
      if (IsPort(tree, inner)) ports.push_back(inner);
    }
  }
  return ports;
}

/// The slots of the firmware's records, in their order, with the targets of their addresses.
class RecordSlots {
 public:
  RecordSlots(const Machine& machine, const BusTree& tree) : machine_(machine), tree_(tree) {}

  std::vector<Slot> Make() {
    for (std::size_t i = 0; i < machine_.slotRecords.size(); ++i) slots_.push_back(MakeSlot(i));
    AddPeers();
    DropRepeatedRecords();
    DropCopiedAddresses();
    SeparateByNumber();
    FindByNumber();
    return std::move(slots_);
  }

 private:
  Slot MakeSlot(std::size_t record) const;
  void AddTarget(Slot& slot, Target target) const;
  void DropRepeatedRecords();
  void DropCopiedAddresses();
  void AddPeers();
  std::map<std::size_t, std::vector<std::size_t>> SlotsOfPorts() const;
  void SeparateByNumber();
  void Separate(const std::vector<std::size_t>& group, const SlotNumbers& numbers);
  void FindByNumber();
  bool IsFree(std::size_t port, const std::set<std::size_t>& taken) const;

  const Machine& machine_;
  const BusTree& tree_;
  std::vector<Slot> slots_;
};

void RecordSlots::AddTarget(Slot& slot, Target target) const {
  if (target.kind == Target::Kind::kNone) {
    if (slot.noTargetBecause.empty()) slot.noTargetBecause = std::move(target.evidence);
    return;
  }
  const auto isSame = [&](const Target& other) { return other.IsSamePlace(target); };
  if (std::none_of(slot.targets.begin(), slot.targets.end(), isSame)) {
    slot.targets.push_back(std::move(target));
  }
}

Slot RecordSlots::MakeSlot(std::size_t record) const {
  const SlotRecord& from = machine_.slotRecords[record];
  const std::string source = RecordText(from);
  Slot slot;
  slot.record = record;
  slot.name = from.designation.empty() ? source : from.designation;
  if (!from.address) slot.noTargetBecause = source + " gives no address";
  if (from.address) {
    Target target = TargetOfAddress(tree_, *from.address, source);
    FitToRecord(tree_, from, target);
    AddTarget(slot, std::move(target));
  }
  return slot;
}

/// Some firmware describes one slot in two records that differ by nothing but the handle.
void RecordSlots::DropRepeatedRecords() {
  std::map<std::tuple<std::string, std::uint16_t, Address>, std::size_t> first;
  for (Slot& slot : slots_) {
    const SlotRecord& record = machine_.slotRecords[*slot.record];
    if (record.designation.empty() || !record.address || slot.targets.empty()) continue;
    const auto [same, isNew] =
        first.try_emplace({record.designation, record.id, *record.address}, *slot.record);
    if (isNew) continue;
    slot.targets.clear();
    slot.noTargetBecause =
        RecordText(record) + " repeats " + RecordText(machine_.slotRecords[same->second]);
  }
}

/// A link that ends at one device leads to one slot. Where so many records name it, the address was
/// copied from a template and tells nothing; two or three may mean parts of one slot.
void RecordSlots::DropCopiedAddresses() {
  constexpr std::size_t kMany = 4;
  for (const auto& [port, slots] : SlotsOfPorts()) {
    if (slots.size() < kMany || !LeadsToOneDevice(tree_, port) ||
        !PortsOfSwitchBelow(tree_, port).empty()) {
      continue;
    }
    for (const std::size_t slot : slots) {
      slots_[slot].noTargetBecause = slots_[slot].targets.front().evidence + ", as " +
                                     std::to_string(slots.size() - 1) + " other records do";
      slots_[slot].targets.clear();
    }
  }
}

/// Bifurcated slots list the other devices that belong to them. What another record gives as its
/// own address belongs to that one.
void RecordSlots::AddPeers() {
  const auto own = SlotsOfPorts();
  for (Slot& slot : slots_) {
    const SlotRecord& record = machine_.slotRecords[*slot.record];
    for (const Address& peer : record.peers) {
      Target target = TargetOfAddress(tree_, peer, RecordText(record) + ", in its peer group,");
      FitToRecord(tree_, record, target);
      if (target.kind == Target::Kind::kPort && own.contains(target.port)) continue;
      AddTarget(slot, std::move(target));
    }
    if (!slot.targets.empty()) slot.noTargetBecause.clear();
  }
}

/// The slots whose only target is this port.
std::map<std::size_t, std::vector<std::size_t>> RecordSlots::SlotsOfPorts() const {
  std::map<std::size_t, std::vector<std::size_t>> slotsOfPort;
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    if (slots_[i].targets.size() != 1) continue;
    const Target& target = slots_[i].targets.front();
    if (target.kind == Target::Kind::kPort) slotsOfPort[target.port].push_back(i);
  }
  return slotsOfPort;
}

/// Several records may name the port above a switch of the board. Where the ports of the switch are
/// numbered as all these records are, each record means its own port.
void RecordSlots::SeparateByNumber() {
  const SlotNumbers numbers(machine_, tree_, {});
  for (const auto& [port, group] : SlotsOfPorts()) {
    if (group.size() > 1) Separate(group, numbers);
  }
}

void RecordSlots::Separate(const std::vector<std::size_t>& group, const SlotNumbers& numbers) {
  const std::vector<std::size_t> ports =
      PortsOfSwitchBelow(tree_, slots_[group.front()].targets.front().port);
  std::vector<Target> found;
  std::set<std::size_t> taken;
  for (const std::size_t slot : group) {
    const auto target = numbers.FindAmong(machine_.slotRecords[*slots_[slot].record], ports);
    if (!target || !taken.insert(target->port).second) return;
    found.push_back(*target);
  }
  for (std::size_t i = 0; i < group.size(); ++i) slots_[group[i]].targets = {found[i]};
}

/// Whether a slot may be concluded at this port: nothing else leads to it, and no slot holds it. A
/// port inside a slot belongs to the card.
bool RecordSlots::IsFree(std::size_t port, const std::set<std::size_t>& taken) const {
  for (std::optional<std::size_t> at = port; at; at = tree_.GetParent(*at)) {
    if (taken.contains(*at)) return false;
  }
  return true;
}

/// Records whose address leads nowhere: placeholders, templates that nobody filled in.
void RecordSlots::FindByNumber() {
  const SlotNumbers numbers(machine_, tree_, slots_);
  std::set<std::size_t> taken;
  std::map<std::uint16_t, unsigned> records;
  for (const Slot& slot : slots_) {
    for (const Target& target : slot.targets) {
      if (target.kind == Target::Kind::kPort) taken.insert(target.port);
    }
    if (slot.targets.empty()) ++records[machine_.slotRecords[*slot.record].id];
  }
  for (Slot& slot : slots_) {
    const SlotRecord& record = machine_.slotRecords[*slot.record];
    // Two records with one number cannot be told apart.
    if (!slot.targets.empty() || records[record.id] != 1) continue;
    const auto target = numbers.Find(record);
    if (!target || !IsFree(target->port, taken)) continue;
    slot.targets.push_back(*target);
    slot.noTargetBecause.clear();
  }
}

/// Which slots lead to a place.
class SlotsByPlace {
 public:
  explicit SlotsByPlace(const std::vector<Slot>& slots) {
    for (std::size_t i = 0; i < slots.size(); ++i) {
      for (const Target& target : slots[i].targets) At(target).push_back(i);
    }
  }
  std::vector<std::size_t>& At(const Target& target) {
    return target.kind == Target::Kind::kPort ? ofPorts_[target.port] : ofDevices_[target.device];
  }

 private:
  std::map<std::size_t, std::vector<std::size_t>> ofPorts_;
  std::map<Address, std::vector<std::size_t>> ofDevices_;
};

/// Adds the kernel's slots: to the slot that leads to the same place, else as slots of their own.
void AddKernelSlots(const Machine& machine, const BusTree& tree, std::vector<Slot>& slots) {
  SlotsByPlace places(slots);
  for (std::size_t i = 0; i < machine.kernelSlots.size(); ++i) {
    const Target target = TargetOfKernelSlot(tree, machine.kernelSlots[i]);
    const bool isFound = target.kind != Target::Kind::kNone;
    if (const auto& same = places.At(target); isFound && !same.empty()) {
      if (same.size() == 1) slots[same.front()].kernelSlots.push_back(i);
      continue;
    }
    Slot slot;
    slot.name = machine.kernelSlots[i].name;
    slot.source = SlotSource::kKernelSlot;
    slot.kernelSlots = {i};
    if (isFound)
      slot.targets.push_back(target);
    else
      slot.noTargetBecause = target.evidence;
    slots.push_back(std::move(slot));
  }
}

/// Firmware repeats designations; the later ones get a number.
void MakeNamesUnique(std::vector<Slot>& slots) {
  std::set<std::string> used;
  std::map<std::string, unsigned> counts;
  for (Slot& slot : slots) {
    const std::string name = slot.name;
    while (!used.insert(slot.name).second) {
      slot.name = name + " (" + std::to_string(++counts[name] + 1) + ")";
    }
  }
}

}  // namespace

Resolution ResolveSlots(const Machine& machine, const BusTree& tree) {
  Resolution resolution;
  resolution.slots = RecordSlots(machine, tree).Make();
  AddKernelSlots(machine, tree, resolution.slots);
  PlaceFunctions(machine, tree, resolution);
  MakeNamesUnique(resolution.slots);
  JudgeSlots(machine, tree, resolution);
  return resolution;
}

}  // namespace topology
