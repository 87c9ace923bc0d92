// SPDX-License-Identifier: Apache-2.0

// The second plug-in: cards that are plugged while the machine runs, slots of every source, and
// what lspci and the kernel tell of the same.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/system/booted_machine.h"
#include "tests/system/placements.h"
#include "tests/system/verbose_lspci.h"

namespace {

using nlohmann::json;

class TopologyTest : public testing::Test {
 protected:
  const Answer& told_ = booted.answers.at("topology");
  const json instances_ = json::parse(told_.out);
  const VerboseLspci lspci_ = ReadVerboseLspci(booted.answers.at("verbose").out);
};

TEST_F(TopologyTest, OnlyALackOfSlotRecordsIsComplainedOf) {
  EXPECT_EQ(told_.status, 0);
  if (!booted.machine.records.empty()) {
    EXPECT_EQ(told_.err, "");
  } else {
    EXPECT_NE(told_.err.find("SMBIOS tables hold no slot records"), std::string::npos) << told_.err;
    EXPECT_EQ(std::count(told_.err.begin(), told_.err.end(), '\n'), 1) << told_.err;
  }
}

TEST_F(TopologyTest, CardsAreWhereTheyWerePut) {
  const json& expected = booted.machine.topology;
  const json found = ReadPlacements(instances_);
  EXPECT_TRUE(found == expected) << "found:\n"
                                 << found.dump(2)
                                 << "\nthe way from what is expected to what is found:\n"
                                 << json::diff(expected, found).dump(2);
}

TEST_F(TopologyTest, FunctionsAreAsLspciShowsThem) {
  const FactsByName told = TellFunctions(instances_);
  EXPECT_EQ(told.size(), lspci_.functions.size());
  for (const auto& [function, facts] : told) {
    EXPECT_EQ(facts, lspci_.functions.at(function)) << function;
  }
}

TEST_F(TopologyTest, PortsOfSlotsAreAsLspciShowsThem) {
  const FactsByName told = TellPortSlots(instances_);
  for (const auto& [port, facts] : told) EXPECT_EQ(facts, lspci_.portSlots.at(port)) << port;
}

TEST_F(TopologyTest, FunctionsAreInTheKernelSlotsThatLspciShows) {
  const FactsByName told = TellPhysicalSlots(instances_);
  for (const auto& [function, facts] : lspci_.physicalSlots) {
    // The kernel may give a slot the device of the port that leads to it. What is in the slot is
    // behind the port.
    const Facts& shown = lspci_.functions.at(function);
    if (shown.contains("port type") && shown.at("port type") == "Root Port") continue;
    // A function of a slot with several ports.
    if (!told.contains(function)) {
      EXPECT_TRUE(TellKernelSlots(instances_).at(facts.at("kernel slot")).empty()) << function;
      continue;
    }
    EXPECT_EQ(told.at(function), facts) << function;
  }
}

TEST_F(TopologyTest, KernelSlotsAreAsTheKernelShowsThem) {
  const FactsByName shown = ReadKernelSlots(booted.answers.at("slots").out);
  const FactsByName told = TellKernelSlots(instances_);
  EXPECT_EQ(told.size(), shown.size());
  for (const auto& [slot, facts] : shown) {
    ASSERT_TRUE(told.contains(slot)) << slot;
    // Those of a slot with several ports are told by name only.
    if (told.at(slot).empty()) continue;
    for (const auto& [name, value] : facts) EXPECT_EQ(told.at(slot).at(name), value) << slot;
  }
}

}  // namespace
