// SPDX-License-Identifier: Apache-2.0
#include "bench/fleet/fleet_machine.h"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>

#include "host/record/machine_record.h"

namespace bench {
namespace {

std::string LineOf(const FleetPlan& plan, std::size_t number) {
  return MachineLine(CollectedOf(plan, StateOf(plan, number)));
}

pciinfo::MachineModel ModelOf(const FleetPlan& plan, std::size_t number) {
  return CollectedOf(plan, StateOf(plan, number)).facts.machine;
}

TEST(FleetMachine, IsTheSameEachTimeAndAnotherForEachSeedAndNumber) {
  const std::string line = LineOf({}, 5);
  EXPECT_EQ(LineOf({}, 5), line);
  EXPECT_NE(LineOf({}, 6), line);
  EXPECT_NE(LineOf({.seed = 2}, 5), line);
}

TEST(FleetMachine, CanBeStored) {
  const pciinfo::MachineRecord record = pciinfo::ParseRecord(LineOf({}, 5));
  EXPECT_EQ(record.functions.size(), 200U);
  EXPECT_EQ(record.name, "row00-rack00-unit06");
  EXPECT_EQ(record.collected, "2026-01-05T06:00:05Z");
}

TEST(FleetMachine, HasTheFunctionsThatWereAskedFor) {
  for (std::size_t number = 0; number < 200; ++number) {
    EXPECT_EQ(ModelOf({.functions = kFewestFunctions}, number).functions.size(), kFewestFunctions);
  }
  const pciinfo::MachineModel large = ModelOf({.functions = kMostFunctions}, 7);
  std::set<pciinfo::DomainAddress> addresses;
  for (const auto& function : large.functions) addresses.insert(function.address);
  EXPECT_EQ(addresses.size(), kMostFunctions);
}

TEST(FleetMachine, CannotHaveFewerFunctionsThanItsPartsNeed) {
  EXPECT_THROW(StateOf({.functions = kFewestFunctions - 1}, 0), std::invalid_argument);
  EXPECT_THROW(StateOf({.functions = kMostFunctions + 1}, 0), std::invalid_argument);
}

TEST(FleetMachine, MakesAFleetWithVariety) {
  std::set<std::string> products;
  std::set<std::string> cards;
  std::size_t freeSlots = 0;
  std::size_t findings = 0;
  for (std::size_t number = 0; number < 300; ++number) {
    const pciinfo::CollectedMachine machine = CollectedOf({}, StateOf({}, number));
    products.insert(machine.identity.product);
    findings += machine.findings.size();
    for (const auto& slot : machine.facts.machine.slots)
      freeSlots += slot.functions.empty() ? 1 : 0;
    for (const auto& function : machine.facts.machine.functions) {
      if (function.slot) cards.insert(function.deviceName);
    }
  }
  EXPECT_GT(products.size(), 30U);
  EXPECT_GT(cards.size(), 200U);
  EXPECT_GT(freeSlots, 500U);
  EXPECT_GT(findings, 10U);
  EXPECT_LT(findings, 150U);
}

TEST(FleetMachine, HasHardwareAddressesOfItsOwn) {
  std::set<std::string> addresses;
  std::size_t interfaces = 0;
  for (std::size_t number = 0; number < 100; ++number) {
    const pciinfo::CollectedMachine machine = CollectedOf({}, StateOf({}, number));
    for (const auto& facts : machine.facts.functions) {
      for (const auto& device : facts.systemDevices) {
        if (device.hardwareAddress.empty()) continue;
        addresses.insert(device.hardwareAddress);
        ++interfaces;
      }
    }
  }
  EXPECT_GT(interfaces, 100U);
  EXPECT_EQ(addresses.size(), interfaces);
}

TEST(FleetMachine, AFewPercentOfTheMachinesChangeInAWeek) {
  int changed = 0;
  for (std::size_t number = 0; number < 1000; ++number) {
    changed += StateOf({.week = 1}, number) == StateOf({}, number) ? 0 : 1;
  }
  EXPECT_GT(changed, 15);
  EXPECT_LT(changed, 45);
}

TEST(FleetMachine, IsTheSameMachineAWeekLater) {
  const auto first = CollectedOf({}, StateOf({}, 5)).stamp;
  const auto later = CollectedOf({.week = 1}, StateOf({.week = 1}, 5)).stamp;
  EXPECT_EQ(later.ids.systemUuid, first.ids.systemUuid);
  EXPECT_EQ(first.collected, "2026-01-05T06:00:05Z");
  EXPECT_EQ(later.collected, "2026-01-12T06:00:05Z");
}

}  // namespace
}  // namespace bench
