// SPDX-License-Identifier: Apache-2.0

// What holds for any records on any tree. The seeds are fixed, so a failure can be repeated.

#include <gtest/gtest.h>

#include "tests/fakes/fewer_if_sanitized.h"
#include "tests/topology/random_machine.h"
#include "tests/topology/resolution_rules.h"
#include "topology/slot_resolver.h"

namespace topology {
namespace {

TEST(RandomMachines, KeepTheRulesOfResolutions) {
  for (unsigned seed = 0; seed < FewerIfSanitized(5000); ++seed) {
    const Machine machine = MakeRandomMachine(seed);
    const BusTree tree(machine.functions);
    EXPECT_EQ(BrokenRule(machine, ResolveSlots(machine, tree)), "") << "seed " << seed;
  }
}

TEST(RandomMachines, HaveEverythingThatRulesAreAbout) {
  std::size_t occupants = 0, shared = 0, inner = 0, conflicts = 0, likely = 0, acpi = 0;
  for (unsigned seed = 0; seed < 300; ++seed) {
    const Machine machine = MakeRandomMachine(seed);
    const BusTree tree(machine.functions);
    const Resolution resolution = ResolveSlots(machine, tree);
    occupants += resolution.occupants.size();
    for (const SharedPlace& place : resolution.shared) shared += place.functions.size();
    for (const Slot& slot : resolution.slots) {
      inner += slot.outer ? 1 : 0;
      conflicts += slot.conflicts.size();
      acpi += slot.source == SlotSource::kAcpi ? 1 : 0;
    }
    for (const Occupant& occupant : resolution.occupants) {
      likely += occupant.certainty == Certainty::kLikely ? 1 : 0;
    }
  }
  for (const std::size_t count : {occupants, shared, inner, conflicts, likely, acpi}) {
    EXPECT_GT(count, 100U);
  }
}

}  // namespace
}  // namespace topology
