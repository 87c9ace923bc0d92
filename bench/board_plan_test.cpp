// SPDX-License-Identifier: Apache-2.0
#include "bench/board_plan.h"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>

namespace bench {
namespace {

TEST(PlanBoard, HasExactlyTheFunctionsThatWereAskedFor) {
  for (const std::size_t functions : {64U, 65U, 511U, 4096U}) {
    const nlohmann::json pci = PlanBoard(functions).recipe.at("pci");
    std::set<std::string> addresses;
    for (const auto& function : pci) addresses.insert(function.at("address"));
    EXPECT_EQ(pci.size(), functions);
    EXPECT_EQ(addresses.size(), functions) << "an address stands twice";
  }
}

TEST(PlanBoard, EveryFunctionIsInOnePlaceAtMost) {
  const BoardPlan plan = PlanBoard(4096);
  std::multiset<std::string> placed;
  std::set<std::string> domains;
  for (const auto& [slot, functions] : plan.truth.at("slots").items()) {
    for (const std::string function : functions) placed.insert(function);
  }
  for (const auto& shared : plan.truth.at("shared")) {
    for (const std::string function : shared.at("functions")) placed.insert(function);
  }
  for (const std::string& function : placed) {
    EXPECT_EQ(placed.count(function), 1U) << function;
    domains.insert(function.substr(0, 4));
  }
  EXPECT_GT(placed.size(), 1500U);
  EXPECT_GT(domains.size(), 3U);
}

TEST(PlanBoard, HasTheFirmwaresHabits) {
  const BoardPlan plan = PlanBoard(2048);
  std::set<unsigned> segments, usages, lengths;
  for (const auto& structure : plan.recipe.at("smbios").at("structures")) {
    if (!structure.contains("slot")) continue;
    const auto& slot = structure.at("slot");
    if (slot.contains("segment")) segments.insert(slot.at("segment").get<unsigned>());
    usages.insert(slot.at("usage").get<unsigned>());
    lengths.insert(slot.at("structureLength").get<unsigned>());
  }
  EXPECT_EQ(usages, (std::set<unsigned>{3, 4}));
  EXPECT_EQ(lengths, (std::set<unsigned>{13, 17, 28, 39}));
  EXPECT_TRUE(segments.contains(0xFF00) && segments.contains(0xFFFF) && segments.contains(1));
  EXPECT_FALSE(plan.kernelSlots.empty() || plan.userNumbers.empty());
  EXPECT_FALSE(plan.truth.at("shared").empty());
}

TEST(PlanBoard, RefusesWhatItCannotMake) {
  EXPECT_THROW(PlanBoard(63), std::invalid_argument);
  EXPECT_THROW(PlanBoard(20001), std::invalid_argument);
}

}  // namespace
}  // namespace bench
