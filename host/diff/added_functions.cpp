// SPDX-License-Identifier: Apache-2.0
#include "host/diff/added_functions.h"

#include <fmt/format.h>

#include <map>

#include "host/diff/diff_places.h"
#include "host/diff/function_labels.h"
#include "host/views/place_texts.h"

namespace pciinfo {
namespace {

/// Saved instances may name each other as parents; no real way to a function is longer.
constexpr int kMostSteps = 64;

/// Groups functions without a partner by the card that they came or went with.
class CardGroups final {
 public:
  CardGroups(const MachineModel& machine, const std::vector<std::optional<std::size_t>>& partners)
      : machine_(machine), partners_(partners) {
    std::map<std::string, std::size_t> places;  // in `groups_`, by key
    for (std::size_t i = 0; i < machine.functions.size(); ++i) {
      if (partners[i]) continue;
      const MachineFunction& function = machine.functions[i];
      const auto [place, isNew] = places.try_emplace(KeyOf(function), groups_.size());
      if (isNew) groups_.emplace_back();
      groups_[place->second].push_back(&function);
    }
  }

  /// The groups in the order of their first functions.
  const std::vector<FunctionList>& Get() const { return groups_; }

 private:
  bool IsAlone(const MachineFunction* function) const {
    return function != nullptr &&
           !partners_[static_cast<std::size_t>(function - machine_.functions.data())];
  }

  /// The function that a function came with: the physical function of a virtual one, the port of a
  /// switch on the card. A port of the machine is no part of the card behind it.
  const MachineFunction* OwnerOf(const MachineFunction& function) const {
    const auto& address =
        function.physicalFunction ? function.physicalFunction : function.parentPort;
    const MachineFunction* const owner = address ? machine_.Find(*address) : nullptr;
    return IsAlone(owner) && owner->parentPort ? owner : nullptr;
  }

  const MachineFunction& FirstOf(const MachineFunction& function) const {
    const MachineFunction* first = &function;
    for (int steps = 0; steps < kMostSteps; ++steps) {
      const MachineFunction* const owner = OwnerOf(*first);
      if (owner == nullptr) break;
      first = owner;
    }
    return *first;
  }

  std::string KeyOf(const MachineFunction& function) const {
    const MachineFunction& first = FirstOf(function);
    // Virtual functions of a physical one that has stayed.
    if (first.physicalFunction) return "of " + FormatAddress(*first.physicalFunction);
    const MachineSlot* const slot = NamedSlotOf(first, machine_);
    if (slot != nullptr) return "in " + slot->name;
    // What is on a root bus is the chip set, which comes and goes as one.
    const bool isChipSet = !first.parentPort && first.place == FunctionPlace::kOnBoard;
    if (isChipSet) return fmt::format("domain {}", first.address.domain);
    DomainAddress device = first.address;
    device.address.function = 0;
    return FormatAddress(device);
  }

  const MachineModel& machine_;
  const std::vector<std::optional<std::size_t>>& partners_;
  std::vector<FunctionList> groups_;
};

std::string ChangeInWords(const FunctionList& functions, const MachineModel& machine, bool isNew) {
  const MachineFunction& first = *functions.front();
  const char* const verb = isNew ? "added" : "removed";
  if (first.physicalFunction) {
    return fmt::format("{}: {} of {}", verb,
                       Count(functions.size(), "virtual function", "virtual functions"),
                       AddressText(*first.physicalFunction, machine.HasDomains()));
  }
  const std::string where = WhereText(first, machine);
  return isNew || where.empty() ? verb + where : fmt::format("{}, was{}", verb, where);
}

}  // namespace

std::vector<ObjectChange> WithoutPartner(const MachineModel& machine,
                                         const std::vector<std::optional<std::size_t>>& partners,
                                         ObjectChange::Op op) {
  std::vector<ObjectChange> changes;
  const CardGroups groups(machine, partners);
  for (const FunctionList& functions : groups.Get()) {
    ObjectChange change;
    change.op = op;
    change.subject = "function";
    change.label = CardsLabel(functions, machine);
    for (const MachineFunction* function : functions) change.functions.push_back(function->address);
    const bool isNew = op == ObjectChange::Op::kAdd;
    change.facts.push_back({"", {}, {}, ChangeInWords(functions, machine, isNew)});
    changes.push_back(std::move(change));
  }
  return changes;
}

}  // namespace pciinfo
