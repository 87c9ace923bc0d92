// SPDX-License-Identifier: Apache-2.0
#include "bench/fleet/machine_state.h"

#include <fmt/format.h>

#include <stdexcept>

#include "bench/fleet/random.h"

namespace bench {
namespace {

bool IsBay(const MachineKind& kind, std::size_t place) { return place >= kind.slots.size(); }

/// Returns a model of cards that fits into the place.
std::size_t FittingModel(const MachineKind& kind, std::size_t place, Random& random) {
  const std::size_t cards = SlotCardModels();
  if (IsBay(kind, place)) return cards + random.FewBelow(CardModels().size() - cards);
  while (true) {
    const std::size_t model =
        random.FewBelow(2) == 0 ? random.Below(cards) : random.FewBelow(cards);
    if (CardModels()[model].lanes <= kind.slots[place] || kind.slots[place] < 8) return model;
  }
}

/// Returns what a machine of this kind is sold with at this place, in one of three builds.
std::size_t UsualModel(const FleetPlan& plan, const MachineState& machine, std::size_t place,
                       std::size_t build) {
  const MachineKind& kind = machine.Kind();
  const std::size_t first = kind.slots.size();
  // All bays of a build have the same drives.
  const std::size_t same = IsBay(kind, place) ? first : place;
  Random random{plan.seed, machine.kind, build, same};
  return FittingModel(kind, place, random);
}

InstalledCard NewCard(std::size_t model, Random& random) {
  InstalledCard card;
  card.model = model;
  card.firmware = static_cast<unsigned>(random.FewBelow(6));
  card.serial = random.Next();
  card.isNarrow = random.IsOneIn(200);
  card.hasDriver = !random.IsOneIn(300);
  if (random.IsOneIn(100)) card.errors = static_cast<unsigned>(random.Below(3000) + 1);
  return card;
}

MachineState FirstState(const FleetPlan& plan, std::size_t number) {
  Random random{plan.seed, number};
  MachineState machine;
  machine.number = number;
  machine.kind = random.FewBelow(MachineKinds().size());
  machine.bios = static_cast<unsigned>(random.FewBelow(5));
  machine.isReadable = !random.IsOneIn(100);
  const std::size_t build = random.FewBelow(3);
  const MachineKind& kind = machine.Kind();
  for (std::size_t place = 0; place < kind.slots.size() + kind.bays; ++place) {
    std::optional<InstalledCard>& card = machine.places.emplace_back();
    if (random.IsOneIn(3)) continue;
    const bool isUsual = !random.IsOneIn(5);
    card = NewCard(
        isUsual ? UsualModel(plan, machine, place, build) : FittingModel(kind, place, random),
        random);
  }
  machine.processorDevices = plan.functions - machine.OtherFunctions();
  return machine;
}

void CheckFunctions(std::size_t functions) {
  if (functions >= kFewestFunctions && functions <= kMostFunctions) return;
  throw std::invalid_argument(fmt::format("a machine of the fleet has {} to {} functions",
                                          kFewestFunctions, kMostFunctions));
}

/// Changes one thing, as the work of a week does.
void Change(MachineState& machine, Random& random) {
  const std::size_t place = random.Below(machine.places.size());
  std::optional<InstalledCard>& card = machine.places[place];
  if (!card) {
    card = NewCard(FittingModel(machine.Kind(), place, random), random);
    return;
  }
  switch (random.Below(6)) {
    case 0:
      card.reset();
      break;
    case 1:  // replaced by one of the same model
      card->serial = random.Next();
      break;
    case 2:
      card->isNarrow = !card->isNarrow;
      break;
    default:  // an update of the firmware of which the system knows the version
      ++(CardModels()[card->model].TellsFirmware() ? card->firmware : machine.bios);
  }
}

}  // namespace

std::size_t MachineState::OtherFunctions() const {
  std::size_t count = kBoardFunctions + places.size();  // a place has a port
  for (const std::optional<InstalledCard>& card : places) {
    if (card) count += CardModels()[card->model].functions;
  }
  return count;
}

MachineState StateOf(const FleetPlan& plan, std::size_t number) {
  CheckFunctions(plan.functions);
  MachineState machine = FirstState(plan, number);
  for (unsigned week = 1; week <= plan.week; ++week) {
    Random random{plan.seed, number, week};
    if (random.Below(1000) < plan.changedPerMille) Change(machine, random);
  }
  return machine;
}

}  // namespace bench
