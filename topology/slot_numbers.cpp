// SPDX-License-Identifier: Apache-2.0
#include "topology/slot_numbers.h"

#include <algorithm>

#include "topology/slot_targets.h"

namespace topology {
namespace {

bool HasRecordTarget(const Slot& slot) {
  return slot.record && slot.targets.size() == 1 &&
         slot.targets.front().kind == Target::Kind::kPort;
}

}  // namespace

SlotNumbers::SlotNumbers(const Machine& machine, const BusTree& tree,
                         const std::vector<Slot>& slots)
    : machine_(machine), tree_(tree) {
  AddKernelSlots();
  AddUserNumbers();
  AddPhysicalNumbers();
  Distrust(slots);
}

void SlotNumbers::Numbering::Add(std::uint64_t number, std::size_t port) {
  portsOf.emplace(number, port);
  numbersOf.emplace(port, number);
}

void SlotNumbers::AddKernelSlots() {
  Numbering numbering("kernel slot");
  for (const KernelSlot& slot : machine_.kernelSlots) {
    const auto number = NumberOf(slot);
    const Target target = TargetOfKernelSlot(tree_, slot);
    if (number && target.kind == Target::Kind::kPort) {
      numbering.Add(*number, target.port);
    }
  }
  numberings_.push_back(std::move(numbering));
}

void SlotNumbers::AddUserNumbers() {
  // Some makers number the port, others the card's first function. A function further down says
  // nothing of the port.
  Numbering numbering("ACPI slot user number");
  for (std::size_t i = 0; i < machine_.functions.size(); ++i) {
    const auto number = machine_.functions[i].slotUserNumber;
    if (!number) continue;
    const auto port = IsPort(tree_, i) ? std::optional(i) : tree_.GetParent(i);
    if (port && IsPort(tree_, *port)) numbering.Add(*number, *port);
  }
  numberings_.push_back(std::move(numbering));
}

void SlotNumbers::AddPhysicalNumbers() {
  Numbering numbering("physical slot number");
  for (std::size_t i = 0; i < machine_.functions.size(); ++i) {
    const auto& express = machine_.functions[i].config.express;
    // Zero is what a port holds whose number nobody set.
    if (!express || !express->slot || express->slot->physicalNumber == 0) continue;
    numbering.Add(express->slot->physicalNumber, i);
  }
  numberings_.push_back(std::move(numbering));
}

void SlotNumbers::Distrust(const std::vector<Slot>& slots) {
  for (Numbering& numbering : numberings_) {
    numbering.trusted = std::none_of(slots.begin(), slots.end(), [&](const Slot& slot) {
      return HasRecordTarget(slot) && IsContradicted(numbering, slot);
    });
  }
}

bool SlotNumbers::IsContradicted(const Numbering& numbering, const Slot& slot) const {
  const std::uint64_t id = machine_.slotRecords[*slot.record].id;
  const std::size_t port = slot.targets.front().port;
  const auto first = numbering.numbersOf.lower_bound({port, 0});
  const bool isNumbered = first != numbering.numbersOf.end() && first->first == port;
  return isNumbered && !numbering.numbersOf.contains({port, id});
}

Target SlotNumbers::Fit(const SlotRecord& record, const Numbering& numbering,
                        std::size_t port) const {
  Target target;
  target.certainty = Certainty::kLikely;
  target.kind = Target::Kind::kPort;
  target.port = port;
  target.evidence = RecordText(record) + " has the slot ID " + std::to_string(record.id) +
                    ", the " + numbering.name + " of port " + ToText(tree_.At(port).address);
  return FitToRecord(tree_, record, target) ? target : Target{};
}

template <class Allowed>
std::optional<Target> SlotNumbers::FindIn(const Numbering& numbering, const SlotRecord& record,
                                          const Allowed& allowed) const {
  std::optional<std::size_t> only;
  for (auto entry = numbering.portsOf.lower_bound({record.id, 0});
       entry != numbering.portsOf.end() && entry->first == record.id; ++entry) {
    if (!allowed(entry->second)) continue;
    if (only) return std::nullopt;
    only = entry->second;
  }
  if (!only) return std::nullopt;
  const Target target = Fit(record, numbering, *only);
  return target.kind == Target::Kind::kNone ? std::nullopt : std::optional(target);
}

std::optional<Target> SlotNumbers::Find(const SlotRecord& record) const {
  if (record.id == 0) return std::nullopt;
  for (const Numbering& numbering : numberings_) {
    if (!numbering.trusted) continue;
    if (auto target = FindIn(numbering, record, [](std::size_t) { return true; })) return target;
  }
  return std::nullopt;
}

std::optional<Target> SlotNumbers::FindAmong(const SlotRecord& record,
                                             const std::vector<std::size_t>& ports) const {
  if (record.id == 0) return std::nullopt;
  const auto isOneOfThem = [&](std::size_t port) {
    return std::binary_search(ports.begin(), ports.end(), port);
  };
  for (const Numbering& numbering : numberings_) {
    if (auto target = FindIn(numbering, record, isOneOfThem)) return target;
  }
  return std::nullopt;
}

}  // namespace topology
