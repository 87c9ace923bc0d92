// SPDX-License-Identifier: Apache-2.0
#include "host/diff/machine_pairs.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "host/diff/port_path.h"
#include "host/machine/names.h"
#include "host/model/pair_by_keys.h"

namespace pciinfo {
namespace {

Partners PairUp(const std::vector<PairingKeys>& before, const std::vector<PairingKeys>& after) {
  Partners partners{PairByKeys(before, after), {}};
  partners.toAfter.resize(before.size());
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (partners.toBefore[i]) partners.toAfter[*partners.toBefore[i]] = i;
  }
  return partners;
}

/// The path to the first port that leads to a slot; empty if none is known.
std::string PathToSlot(const MachineSlot& slot, const MachineModel& machine,
                       const std::vector<std::string>& paths) {
  const auto address = slot.ports.empty() ? std::nullopt : ParseDomainAddress(slot.ports.front());
  const MachineFunction* const port = address ? machine.Find(*address) : nullptr;
  return port == nullptr ? "" : paths[static_cast<std::size_t>(port - machine.functions.data())];
}

std::string NumberText(const std::optional<unsigned>& number) {
  return number ? std::to_string(*number) : "";
}

/// A slot that only a port tells of has no name that would last: it is known by the way to it.
PairingKeys KeysOfSlot(const MachineSlot& slot, const std::string& path) {
  if (!slot.IsNamed()) return {"", "", "", "", path};
  const std::string id = NumberText(slot.id);
  const std::string handle = NumberText(slot.recordHandle);
  const bool isNumbered = !id.empty() && !handle.empty();
  return {fmt::format("{}|{}|{}", slot.source, slot.name, id), slot.source + '|' + slot.name,
          slot.name, isNumbered ? fmt::format("{}|{}|{}", slot.source, id, handle) : "", path};
}

std::vector<PairingKeys> SlotKeys(const MachineModel& machine,
                                  const std::vector<std::string>& paths) {
  std::vector<PairingKeys> keys;
  keys.reserve(machine.slots.size());
  for (const MachineSlot& slot : machine.slots) {
    keys.push_back(KeysOfSlot(slot, PathToSlot(slot, machine, paths)));
  }
  return keys;
}

/// The properties that tell one card from another of the same model.
constexpr const char* kSerialProperties[] = {"SerialNumber", "ProductSerialNumber",
                                             "NvmeSerialNumbers"};

bool Knows(const MachineState& state, const char* property) {
  return std::any_of(
      state.details.begin(), state.details.end(),
      [property](const NamedProperties& details) { return details.TextOf(property).has_value(); });
}

/// The serial numbers that can be compared, because both sides know some.
std::vector<const char*> CommonSerials(const MachineState& before, const MachineState& after) {
  std::vector<const char*> common;
  for (const char* property : kSerialProperties) {
    if (Knows(before, property) && Knows(after, property)) common.push_back(property);
  }
  return common;
}

std::string SerialOf(const NamedProperties& details, const std::vector<const char*>& properties) {
  for (const char* property : properties) {
    if (const auto text = details.TextOf(property)) return fmt::format("{}={}", property, *text);
  }
  return "";
}

/// Makes the keys of the functions of one side.
class KeysOfFunctions final {
 public:
  /// `slotNumbers`: a number for each slot, the same for slots that are partners.
  KeysOfFunctions(const MachineState& state, const std::vector<std::size_t>& slotNumbers,
                  const std::vector<const char*>& serials)
      : state_(state), slotNumbers_(slotNumbers), paths_(PortPaths(state.model)) {
    for (std::size_t i = 0; i < state.model.functions.size(); ++i) {
      models_.push_back(ModelOf(state.model.functions[i]));
      serials_.push_back(SerialOf(state.details[i], serials));
      ++uses_[SerialKey(i)];
    }
  }

  std::vector<PairingKeys> Make() const {
    std::vector<PairingKeys> keys;
    keys.reserve(models_.size());
    for (std::size_t i = 0; i < models_.size(); ++i) keys.push_back(KeysAt(i));
    return keys;
  }

 private:
  static std::string ModelOf(const MachineFunction& function) {
    return fmt::format("{} {}:{}", IdText(function), NumberText(function.subsystemVendorId),
                       NumberText(function.subsystemId));
  }

  std::string SerialKey(std::size_t i) const {
    if (serials_[i].empty()) return "";
    const PciAddress& address = state_.model.functions[i].address.address;
    return fmt::format("{}|{}|{}", models_[i], serials_[i], address.function);
  }

  PairingKeys KeysAt(std::size_t i) const {
    const MachineFunction& function = state_.model.functions[i];
    const std::string within = NumberOnBus(function.address.address);
    const std::string slot =
        function.slot ? fmt::format("slot {}/{}", slotNumbers_[*function.slot], within) : "";
    // Some makers give all cards of a model the same serial number.
    const std::string serial = SerialKey(i);
    // A card in another place is the same only if its serial number does not tell otherwise.
    const std::string card = models_[i] + '|' + serials_[i];
    return {uses_.at(serial) == 1 ? serial : "",
            slot.empty() ? "" : fmt::format("{}|{}|{}", models_[i], slot, paths_[i]),
            slot.empty() ? "" : models_[i] + '|' + slot,
            models_[i] + '|' + paths_[i],
            models_[i] + '|' + FormatAddress(function.address),
            card + '|' + within,
            card,
            slot,
            paths_[i]};
  }

  const MachineState& state_;
  const std::vector<std::size_t>& slotNumbers_;
  std::vector<std::string> paths_;
  std::vector<std::string> models_;
  std::vector<std::string> serials_;
  std::map<std::string, int> uses_;
};

/// Numbers the new slots, and the old ones as their partners.
std::vector<std::size_t> OldSlotNumbers(const Partners& slots) {
  std::vector<std::size_t> numbers;
  for (std::size_t i = 0; i < slots.toAfter.size(); ++i) {
    numbers.push_back(slots.toAfter[i].value_or(slots.toBefore.size() + i));
  }
  return numbers;
}

std::vector<std::size_t> NewSlotNumbers(const Partners& slots) {
  std::vector<std::size_t> numbers;
  for (std::size_t i = 0; i < slots.toBefore.size(); ++i) numbers.push_back(i);
  return numbers;
}

}  // namespace

MachinePairs PairMachines(const MachineState& before, const MachineState& after) {
  MachinePairs pairs;
  pairs.slots = PairUp(SlotKeys(before.model, PortPaths(before.model)),
                       SlotKeys(after.model, PortPaths(after.model)));
  const auto serials = CommonSerials(before, after);
  const auto oldSlots = OldSlotNumbers(pairs.slots);
  const auto newSlots = NewSlotNumbers(pairs.slots);
  pairs.functions = PairUp(KeysOfFunctions(before, oldSlots, serials).Make(),
                           KeysOfFunctions(after, newSlots, serials).Make());
  return pairs;
}

}  // namespace pciinfo
