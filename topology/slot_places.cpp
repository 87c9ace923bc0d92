// SPDX-License-Identifier: Apache-2.0
#include "topology/slot_places.h"

#include <algorithm>
#include <deque>
#include <map>

#include "topology/acpi_slots.h"
#include "topology/slot_targets.h"

namespace topology {
namespace {

/// What holds the functions of a part of the bus tree: a slot, a shared place, or nothing.
struct Holder {
  std::optional<std::size_t> slot;
  std::optional<std::size_t> shared;
  const Target* target = nullptr;  ///< that led to it
};

Address DeviceOf(Address address) {
  address.function = 0;
  return address;
}

/// Walks the bus tree from the roots and takes the innermost holder with it.
class Placing {
 public:
  Placing(const Machine& machine, const BusTree& tree, Resolution& resolution)
      : machine_(machine), tree_(tree), resolution_(resolution), acpi_(machine, tree) {
    FindGroups();
    for (const auto& [port, group] : ports_) holdersOfPorts_.emplace(port, HolderOf(group));
    for (const auto& [device, group] : devices_) holdersOfDevices_.emplace(device, HolderOf(group));
    for (std::size_t i = 0; i < machine.onBoardRecords.size(); ++i) {
      const OnBoardRecord& record = machine.onBoardRecords[i];
      if (record.enabled) onBoard_.emplace(DeviceOf(record.address), i);
    }
    resolution_.places.resize(machine.functions.size());
  }

  void Run() {
    for (const std::size_t root : tree_.GetRoots()) Visit(root, {});
    std::sort(
        resolution_.occupants.begin(), resolution_.occupants.end(),
        [](const Occupant& left, const Occupant& right) { return left.function < right.function; });
  }

 private:
  struct Group {
    Target target;
    std::vector<std::size_t> slots;
  };

  void FindGroups();
  Holder HolderOf(const Group& group);
  void Visit(std::size_t function, Holder holder);
  Holder HolderBehind(std::size_t bridge, const Holder& holder);
  Holder SlotOfPort(std::size_t port, const Holder& holder);
  Holder SlotOfDevice(const Address& device, const Holder& holder);
  Holder AddSlot(SlotSource source, std::string name, Target target, const Holder& outer);
  bool MayHold(const Holder& holder, const AcpiSlots::Numbered* numbered) const;
  void Put(std::size_t function, const Holder& holder);
  void PutInSlot(std::size_t function, const Holder& holder);
  void PutInShared(std::size_t function, const Holder& holder);
  bool LeadsToOnBoardDevice(std::size_t port) const;
  FunctionPlace PlaceOutside(std::size_t function) const;
  FunctionPlace PlaceOnRootBus(const Function& at) const;
  FunctionPlace PlaceBehind(std::size_t bridge) const;
  void NoteOuter(std::size_t slot, const Holder& holder);
  bool IsSwitchOf(std::size_t function, const Holder& holder) const;

  const Machine& machine_;
  const BusTree& tree_;
  Resolution& resolution_;
  AcpiSlots acpi_;
  std::map<std::size_t, Group> ports_;
  std::map<Address, Group> devices_;
  std::map<std::size_t, Holder> holdersOfPorts_;
  std::map<Address, Holder> holdersOfDevices_;
  std::deque<Target> ownTargets_;  // of the slots that this pass adds; their addresses stay
  std::map<Address, std::size_t> onBoard_;  // by the first function of the device
};

void Placing::FindGroups() {
  for (std::size_t i = 0; i < resolution_.slots.size(); ++i) {
    for (const Target& target : resolution_.slots[i].targets) {
      Group& group =
          target.kind == Target::Kind::kPort ? ports_[target.port] : devices_[target.device];
      if (group.slots.empty()) group.target = target;
      group.slots.push_back(i);
    }
  }
}

/// One slot holds what is there; several share it.
Holder Placing::HolderOf(const Group& group) {
  Holder holder;
  holder.target = &group.target;
  if (group.slots.size() == 1) {
    holder.slot = group.slots.front();
    return holder;
  }
  holder.shared = resolution_.shared.size();
  SharedPlace place;
  place.target = group.target;
  place.slots = group.slots;
  place.evidence = group.target.evidence + ", and so do " + std::to_string(group.slots.size() - 1) +
                   " other slots";
  resolution_.shared.push_back(std::move(place));
  return holder;
}

void Placing::NoteOuter(std::size_t slot, const Holder& holder) {
  // Slots with several ports may be told to hold each other; the first one holds then.
  for (auto at = holder.slot; at; at = resolution_.slots[*at].outer) {
    if (*at == slot) return;
  }
  if (holder.slot) resolution_.slots[slot].outer = holder.slot;
}

void Placing::Visit(std::size_t function, Holder holder) {
  const Address device = DeviceOf(tree_.At(function).address);
  if (const auto own = holdersOfDevices_.find(device); own != holdersOfDevices_.end()) {
    if (own->second.slot) NoteOuter(*own->second.slot, holder);
    holder = own->second;
  } else {
    holder = SlotOfDevice(device, holder);
  }
  Put(function, holder);
  if (!tree_.At(function).config.bridge) return;
  const Holder behind = HolderBehind(function, holder);
  for (const std::size_t child : tree_.GetChildren(function)) Visit(child, behind);
}

Holder Placing::HolderBehind(std::size_t bridge, const Holder& holder) {
  const auto own = holdersOfPorts_.find(bridge);
  if (own == holdersOfPorts_.end()) return SlotOfPort(bridge, holder);
  if (own->second.slot) NoteOuter(*own->second.slot, holder);
  return own->second;
}

/// Ports to soldered devices may have the slot bit. What the firmware says of the device is
/// stronger.
bool Placing::LeadsToOnBoardDevice(std::size_t port) const {
  const auto& children = tree_.GetChildren(port);
  return std::any_of(children.begin(), children.end(), [&](std::size_t child) {
    return onBoard_.contains(DeviceOf(tree_.At(child).address));
  });
}

/// Whether a place with this holder may be a slot that no record and no kernel slot names. What is
/// behind a named slot is part of the card. ACPI describes boards, not cards, so one of its slots
/// may hold others, as a riser does.
bool Placing::MayHold(const Holder& holder, const AcpiSlots::Numbered* numbered) const {
  if (holder.shared) return false;
  if (!holder.slot) return true;
  const SlotSource outer = resolution_.slots[*holder.slot].source;
  return outer == SlotSource::kPort || (outer == SlotSource::kAcpi && numbered != nullptr);
}

Holder Placing::AddSlot(SlotSource source, std::string name, Target target, const Holder& outer) {
  Slot slot;
  slot.name = std::move(name);
  slot.source = source;
  slot.outer = outer.slot;
  slot.targets.push_back(target);
  Holder own;
  own.slot = resolution_.slots.size();
  own.target = &ownTargets_.emplace_back(std::move(target));
  resolution_.slots.push_back(std::move(slot));
  return own;
}

/// A port with the slot bit that no record and no kernel slot names leads to a slot all the same,
/// unless it is part of a card. ACPI may number the slot, or label the port with its name.
Holder Placing::SlotOfPort(std::size_t port, const Holder& holder) {
  const Function& at = tree_.At(port);
  const AcpiSlots::Numbered* const numbered = acpi_.FindPort(port);
  if (!at.config.express || !at.config.express->slot || !MayHold(holder, numbered) ||
      LeadsToOnBoardDevice(port)) {
    return holder;
  }
  const std::string portName = "Port " + ToText(at.address);
  if (numbered != nullptr) {
    const std::string number = "ACPI slot " + std::to_string(numbered->number);
    return AddSlot(SlotSource::kAcpi, at.label.empty() ? number : at.label, numbered->target,
                   holder);
  }
  Target target;
  target.kind = Target::Kind::kPort;
  target.port = port;
  target.certainty = Certainty::kLikely;
  target.evidence = "port " + ToText(at.address) +
                    " says that it leads to a slot, which the firmware does not name";
  return AddSlot(SlotSource::kPort, at.label.empty() ? portName : at.label, target, holder);
}

/// A device on a conventional bus that ACPI gives a slot user number, and nothing else a slot.
Holder Placing::SlotOfDevice(const Address& device, const Holder& holder) {
  const AcpiSlots::Numbered* const numbered = acpi_.FindDevice(device);
  if (numbered == nullptr || !MayHold(holder, numbered) || onBoard_.contains(device)) {
    return holder;
  }
  const Holder own = AddSlot(SlotSource::kAcpi, "ACPI slot " + std::to_string(numbered->number),
                             numbered->target, holder);
  holdersOfDevices_.emplace(device, own);
  return own;
}

void Placing::Put(std::size_t function, const Holder& holder) {
  if (holder.slot) {
    PutInSlot(function, holder);
  } else if (holder.shared && !IsSwitchOf(function, holder)) {
    PutInShared(function, holder);
  } else {
    resolution_.places[function] = PlaceOutside(function);
  }
}

void Placing::PutInSlot(std::size_t function, const Holder& holder) {
  const std::string name = ToText(tree_.At(function).address);
  const bool isDevice = holder.target->kind == Target::Kind::kDevice &&
                        IsSameDevice(tree_.At(function).address, holder.target->device);
  Occupant occupant;
  occupant.function = function;
  occupant.slot = *holder.slot;
  occupant.certainty = holder.target->certainty;
  occupant.evidence = holder.target->evidence + "; " + name +
                      (isDevice ? " is a function of that device" : " is behind it");
  const bool isNamed = resolution_.slots[*holder.slot].source != SlotSource::kPort;
  resolution_.places[function] = {isNamed ? Place::kSlot : Place::kUnnamedSlot, occupant.evidence};
  resolution_.occupants.push_back(std::move(occupant));
}

void Placing::PutInShared(std::size_t function, const Holder& holder) {
  SharedPlace& shared = resolution_.shared[*holder.shared];
  shared.functions.push_back(function);
  resolution_.places[function] = {Place::kShared, shared.evidence};
}

/// A switch below a port that several slots share is part of the board: the cards are behind its
/// downstream ports.
bool Placing::IsSwitchOf(std::size_t function, const Holder& holder) const {
  if (holder.target->kind != Target::Kind::kPort) return false;
  const std::size_t port = holder.target->port;
  const auto parent = tree_.GetParent(function);
  const auto isSwitch = [&](std::size_t candidate) {
    const auto& express = tree_.At(candidate).config.express;
    return express && express->Is(PortType::kUpstreamPort) && tree_.GetParent(candidate) == port;
  };
  return isSwitch(function) || (parent && isSwitch(*parent));
}

FunctionPlace Placing::PlaceOutside(std::size_t function) const {
  const Function& at = tree_.At(function);
  if (!machine_.noRecordsBecause.empty()) return {Place::kUnknown, machine_.noRecordsBecause};
  if (const auto record = onBoard_.find(DeviceOf(at.address)); record != onBoard_.end()) {
    const OnBoardRecord& named = machine_.onBoardRecords[record->second];
    return {Place::kOnBoard,
            "the firmware lists it as the onboard device \"" + named.designation + "\""};
  }
  const auto parent = tree_.GetParent(function);
  return parent ? PlaceBehind(*parent) : PlaceOnRootBus(at);
}

/// Cards may sit on a conventional root bus, as in emulated machines and in old ones.
FunctionPlace Placing::PlaceOnRootBus(const Function& at) const {
  if (IsChipsetClass(at)) return {Place::kOnBoard, "it is a part of the chip set on a root bus"};
  if (IsRootComplexBus(tree_, at.address)) return {Place::kOnBoard, "it is on a root bus"};
  return {Place::kUnknown, "it is on a conventional root bus"};
}

/// Without the slot bit on the way to the root, a link leads to something that is soldered.
FunctionPlace Placing::PlaceBehind(std::size_t bridge) const {
  for (std::optional<std::size_t> at = bridge; at; at = tree_.GetParent(*at)) {
    const ConfigFacts& config = tree_.At(*at).config;
    const std::string name = ToText(tree_.At(*at).address);
    if (!config.capabilitiesKnown) {
      return {Place::kUnknown, "the capabilities of port " + name + " could not be read"};
    }
    if (!config.express) return {Place::kUnknown, "it is on the conventional bus behind " + name};
    if (config.express->slot) return {Place::kUnknown, "port " + name + " leads to slots"};
  }
  return {Place::kOnBoard,
          "port " + ToText(tree_.At(bridge).address) + " says that it leads to no slot"};
}

}  // namespace

void PlaceFunctions(const Machine& machine, const BusTree& tree, Resolution& resolution) {
  Placing(machine, tree, resolution).Run();
}

}  // namespace topology
