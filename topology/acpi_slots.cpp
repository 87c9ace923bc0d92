// SPDX-License-Identifier: Apache-2.0
#include "topology/acpi_slots.h"

#include <algorithm>
#include <array>

#include "topology/slot_targets.h"

namespace topology {
namespace {

bool IsFilledIn(std::uint64_t number) {
  constexpr std::array<std::uint64_t, 5> kEmpty{0, 0xFF, 0xFFFF, 0xFFFFFFFF, ~std::uint64_t{0}};
  return std::find(kEmpty.begin(), kEmpty.end(), number) == kEmpty.end();
}

}  // namespace

AcpiSlots::AcpiSlots(const Machine& machine, const BusTree& tree) {
  for (std::size_t i = 0; i < machine.functions.size(); ++i) {
    const auto number = machine.functions[i].slotUserNumber;
    if (number && IsFilledIn(*number)) Add(*number, TargetOfUserNumber(tree, i));
  }
}

void AcpiSlots::Add(std::uint64_t number, const Target& target) {
  if (target.kind == Target::Kind::kNone) return;
  auto& candidates =
      target.kind == Target::Kind::kPort ? ports_[target.port] : devices_[target.device];
  const auto isSame = [&](const Numbered& other) { return other.number == number; };
  if (std::any_of(candidates.begin(), candidates.end(), isSame)) return;
  candidates.push_back({number, target});
  ++placesOf_[number];
}

const AcpiSlots::Numbered* AcpiSlots::Only(const std::vector<Numbered>& candidates) const {
  if (candidates.size() != 1 || placesOf_.at(candidates.front().number) != 1) return nullptr;
  return &candidates.front();
}

const AcpiSlots::Numbered* AcpiSlots::FindPort(std::size_t port) const {
  const auto found = ports_.find(port);
  return found == ports_.end() ? nullptr : Only(found->second);
}

const AcpiSlots::Numbered* AcpiSlots::FindDevice(const Address& device) const {
  const auto found = devices_.find(device);
  return found == devices_.end() ? nullptr : Only(found->second);
}

}  // namespace topology
