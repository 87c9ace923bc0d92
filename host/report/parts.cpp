// SPDX-License-Identifier: Apache-2.0
#include "host/report/parts.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "host/machine/cards.h"
#include "host/machine/names.h"
#include "host/model/smbios_names.h"
#include "host/report/part_link.h"
#include "host/views/place_texts.h"

namespace pciinfo {
namespace {

using SlotPlaces = std::vector<std::size_t>;

/// The functions of one bus that no other part stands for.
struct Rest {
  std::map<std::optional<std::size_t>, FunctionList> cards;  ///< by slot
  FunctionList chipset;
  FunctionList unusedPorts;
};

std::string JoinedNames(const SlotPlaces& slots, const MachineModel& machine) {
  std::string names;
  for (const std::size_t slot : slots) {
    names += (names.empty() ? "" : " or ") + (machine.slots[slot].IsNamed()
                                                  ? NameOf(machine.slots[slot], machine)
                                                  : "Slot without a name");
  }
  return names;
}

/// "empty, x16" where the firmware tells the width.
std::string StateWithWidth(const MachineSlot& slot, const MachineModel& machine) {
  std::string state = InsteadOfCards(slot, machine);
  if (state.empty()) state = StateText(slot);
  constexpr unsigned kUnknownWidth = 2;  // and 1, which is "other"
  if (!slot.width || *slot.width <= kUnknownWidth) return state;
  return state + ", " + SlotWidthText(*slot.width);
}

class PartMaker final {
 public:
  explicit PartMaker(const MachineModel& machine) : machine_(machine) {
    for (std::size_t place = 0; place < machine.slots.size(); ++place) {
      for (const std::string& port : machine.slots[place].ports) {
        slotsAtPort_[port].push_back(place);
      }
    }
  }

  /// `isBehindPort`: bridges are switches there, elsewhere ports.
  std::vector<Part> PartsBehind(const std::vector<PortNode>& nodes, bool isBehindPort,
                                const SlotPlaces& enclosing) const {
    std::vector<Part> parts;
    Rest rest;
    for (const PortNode& node : nodes) {
      const MachineFunction& first = *node.functions.front();
      const bool isBridge = first.buses.has_value() || !node.behind.empty();
      if (isBridge && IsUnused(node)) {
        rest.unusedPorts.insert(rest.unusedPorts.end(), node.functions.begin(),
                                node.functions.end());
      } else if (isBridge) {
        parts.push_back(isBehindPort ? SwitchPart(node, enclosing) : PortPart(node, enclosing));
      } else {
        AddToRest(rest, node.functions, isBehindPort);
      }
    }
    AddCards(parts, rest, enclosing);
    SortByAddress(parts);
    AddGroups(parts, rest);
    return parts;
  }

 private:
  SlotPlaces SlotsAt(const MachineFunction& port) const {
    const auto slots = slotsAtPort_.find(FormatAddress(port.address));
    return slots == slotsAtPort_.end() ? SlotPlaces() : slots->second;
  }

  bool IsUnused(const PortNode& node) const {
    return node.behind.empty() && SlotsAt(*node.functions.front()).empty();
  }

  static void AddToRest(Rest& rest, const FunctionList& functions, bool isBehindPort) {
    for (const MachineFunction* function : functions) {
      const bool isChipset = !isBehindPort && !function->slot && IsBridgeOrChipset(*function);
      (isChipset ? rest.chipset : rest.cards[function->slot]).push_back(function);
    }
  }

  std::size_t PlaceOf(const MachineFunction* function) const {
    return static_cast<std::size_t>(function - machine_.functions.data());
  }

  std::vector<std::size_t> PlacesOf(const FunctionList& functions) const {
    std::vector<std::size_t> places;
    places.reserve(functions.size());
    for (const MachineFunction* function : functions) places.push_back(PlaceOf(function));
    return places;
  }

  void SetSlots(Part& part, const SlotPlaces& slots) const {
    part.slots = slots;
    part.slot = JoinedNames(slots, machine_);
    for (const std::size_t place : slots) {
      const MachineSlot& slot = machine_.slots[place];
      part.isDoubtful = part.isDoubtful || !slot.conflicts.empty();
      part.isNamed = slot.IsNamed();
      const bool isLikely = !slot.functions.empty() &&
                            machine_.functions[slot.functions.front()].certainty == "likely";
      if (isLikely && slot.IsNamed()) part.remark = "likely";
    }
    if (part.isDoubtful) part.remark = "in doubt";
    if (slots.size() == 1) {
      part.state = StateWithWidth(machine_.slots[slots.front()], machine_);
      part.isEmpty = machine_.slots[slots.front()].state == SlotState::kEmpty;
    } else if (!slots.empty()) {
      part.state = "unknown";
    }
  }

  Part BridgePart(PartKind kind, const PortNode& node) const {
    const MachineFunction& bridge = *node.functions.front();
    Part part;
    part.kind = kind;
    part.name = ModelText(bridge);
    part.address = AddressText(bridge.address, machine_.HasDomains());
    part.functions = PlacesOf(node.functions);
    return part;
  }

  Part PortPart(const PortNode& node, SlotPlaces enclosing) const {
    Part part = BridgePart(PartKind::kPort, node);
    SetSlots(part, SlotsAt(*node.functions.front()));
    enclosing.insert(enclosing.end(), part.slots.begin(), part.slots.end());
    part.link = LinkBehind(node, machine_);
    part.behind = PartsBehind(node.behind, true, enclosing);
    return part;
  }

  Part SwitchPart(const PortNode& node, const SlotPlaces& enclosing) const {
    Part part = BridgePart(PartKind::kSwitch, node);
    const SlotPlaces slots = SlotsAt(*node.functions.front());
    if (slots.empty()) {
      part.behind = PartsBehind(node.behind, false, enclosing);
    } else {
      part.behind.push_back(SlotBehindBridge(node, slots, enclosing));
    }
    return part;
  }

  /// The slot to which a bridge on a card leads, as one of a conventional bus.
  Part SlotBehindBridge(const PortNode& node, const SlotPlaces& slots, SlotPlaces enclosing) const {
    Part part;
    part.kind = PartKind::kSlot;
    SetSlots(part, slots);
    enclosing.insert(enclosing.end(), slots.begin(), slots.end());
    part.behind = PartsBehind(node.behind, true, enclosing);
    const bool isCard = part.behind.size() == 1 && part.behind.front().kind == PartKind::kCard;
    if (isCard) part.functions = part.behind.front().functions;
    return part;
  }

  void AddCards(std::vector<Part>& parts, const Rest& rest, const SlotPlaces& enclosing) const {
    for (const auto& [slot, functions] : rest.cards) {
      const bool isEnclosed =
          !slot || std::find(enclosing.begin(), enclosing.end(), *slot) != enclosing.end();
      for (const Card& card : CardsOf(functions, machine_.HasDomains())) {
        Part part;
        part.name = card.text;
        part.address = AddressesText(card);
        part.functions = PlacesOf(card.functions);
        parts.push_back(isEnclosed ? std::move(part) : InSlot(std::move(part), *slot));
      }
    }
  }

  /// A card in a slot to which no port leads that is known.
  Part InSlot(Part card, std::size_t slot) const {
    Part part;
    part.kind = PartKind::kSlot;
    SetSlots(part, {slot});
    part.functions = card.functions;
    part.behind.push_back(std::move(card));
    return part;
  }

  static std::string AddressesText(const Card& card) {
    if (card.addresses.size() < 2) return card.addresses.front();
    if (card.addresses.size() == 2) return card.addresses.front() + ", " + card.addresses.back();
    return fmt::format("{} and {} more", card.addresses.front(), card.addresses.size() - 1);
  }

  static void SortByAddress(std::vector<Part>& parts) {
    std::stable_sort(parts.begin(), parts.end(), [](const Part& left, const Part& right) {
      return left.functions.front() < right.functions.front();
    });
  }

  void AddGroups(std::vector<Part>& parts, const Rest& rest) const {
    AddGroup(parts, rest.unusedPorts, "port with nothing behind it",
             "ports with nothing behind them");
    AddGroup(parts, rest.chipset, "chipset function", "chipset functions");
  }

  void AddGroup(std::vector<Part>& parts, const FunctionList& functions, const char* one,
                const char* many) const {
    if (functions.empty()) return;
    Part& part = parts.emplace_back();
    part.kind = PartKind::kGroup;
    part.name = Count(functions.size(), one, many);
    part.functions = PlacesOf(functions);
  }

  const MachineModel& machine_;
  std::map<std::string, SlotPlaces> slotsAtPort_;  ///< by address
};

std::string NodeOf(const RootBus& root) {
  for (const PortNode& node : root.nodes) {
    const int number = node.functions.front()->numaNode.value_or(-1);
    if (number >= 0) return fmt::format("NUMA node {}", number);
  }
  return "";
}

/// Whether nothing of a bus is drawn, as on those full of parts of the processor.
bool IsOnlyCounted(const PartGroup& group) {
  return std::all_of(group.parts.begin(), group.parts.end(),
                     [](const Part& part) { return part.kind == PartKind::kGroup; });
}

/// Moves what is only counted of several buses to one group.
void GatherCounted(std::vector<PartGroup>& groups) {
  if (std::count_if(groups.begin(), groups.end(), &IsOnlyCounted) < 2) return;
  PartGroup others{"Other buses", "", {}};
  for (PartGroup& group : groups) {
    if (!IsOnlyCounted(group)) continue;
    for (Part& part : group.parts) {
      part.name = group.title + ": " + part.name;
      others.parts.push_back(std::move(part));
    }
  }
  std::erase_if(groups, &IsOnlyCounted);
  groups.push_back(std::move(others));
}

bool HasOneNode(const std::vector<PartGroup>& groups) {
  std::set<std::string> notes;
  for (const PartGroup& group : groups) notes.insert(group.note);
  notes.erase("");
  return notes.size() < 2;
}

/// Whether one of the ports of a slot is drawn.
bool HasPortInTree(const MachineSlot& slot, const MachineModel& machine) {
  return std::any_of(slot.ports.begin(), slot.ports.end(), [&machine](const std::string& text) {
    const auto address = ParseDomainAddress(text);
    const MachineFunction* port = address ? machine.Find(*address) : nullptr;
    return port != nullptr && port->buses.has_value();
  });
}

}  // namespace

std::vector<PartGroup> PartsOf(const std::vector<RootBus>& tree, const MachineModel& machine) {
  const PartMaker maker(machine);
  std::vector<PartGroup> groups;
  groups.reserve(tree.size());
  for (const RootBus& root : tree) {
    const std::string domain = machine.HasDomains() ? fmt::format("{:04x}:", root.domain) : "";
    groups.push_back({fmt::format("Bus {}{:02x}", domain, root.bus), NodeOf(root),
                      maker.PartsBehind(root.nodes, false, {})});
  }
  if (HasOneNode(groups)) {
    for (PartGroup& group : groups) group.note.clear();
  }
  GatherCounted(groups);
  return groups;
}

PartGroup SlotsWithoutPort(const MachineModel& machine) {
  PartGroup group{"Slots without a known port", "", {}};
  for (std::size_t place = 0; place < machine.slots.size(); ++place) {
    const MachineSlot& slot = machine.slots[place];
    if (HasPortInTree(slot, machine) || !slot.functions.empty()) continue;
    Part& part = group.parts.emplace_back();
    part.kind = PartKind::kSlot;
    part.slot = NameOf(slot, machine);
    part.slots = {place};
    part.state = StateWithWidth(slot, machine);
    part.isEmpty = slot.state == SlotState::kEmpty;
    part.isDoubtful = !slot.conflicts.empty();
    if (part.isDoubtful) part.remark = "in doubt";
  }
  return group;
}

}  // namespace pciinfo
