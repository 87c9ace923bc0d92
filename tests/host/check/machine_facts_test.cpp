// SPDX-License-Identifier: Apache-2.0
#include "host/check/machine_facts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/check/machine_checks.h"
#include "tests/host/fixed_repository.h"
#include "tests/host/machine_facts_maker.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(MachineFacts, BelongToTheirFunctions) {
  const auto repository = MakeTopologyRepository();
  const auto details = repository->Find(kDetailsClass)->GetInstances().front();
  const NQZMVTQ20::TCIMValue count(std::uint64_t{7});
  details->SetProperty("CorrectableErrorCount", count, {});
  details->SetProperty("PowerState", NQZMVTQ20::TCIMValue("D3hot"), {});
  const MachineFacts facts = ReadMachineFacts(*repository);
  ASSERT_EQ(facts.functions.size(), facts.machine.functions.size());
  for (std::size_t i = 0; i < facts.functions.size(); ++i) {
    const bool isIt = FormatAddress(facts.machine.functions[i].address) == "0000:02:00.0";
    EXPECT_EQ(facts.functions[i].corrected.total.value_or(0), isIt ? 7U : 0U);
    EXPECT_EQ(facts.functions[i].powerState, isIt ? "D3hot" : "");
    EXPECT_FALSE(facts.functions[i].fatal.total.has_value());
  }
}

TEST(MachineFacts, AreEmptyWithoutTheClasses) {
  const MachineFacts facts = ReadMachineFacts(*MakeEmptyRepository());
  EXPECT_THAT(facts.functions, IsEmpty());
  EXPECT_THAT(CodesOf(facts), IsEmpty()) << "a machine without PCI is healthy";
}

TEST(MachineChecks, FindNothingOnAHealthyMachine) {
  EXPECT_THAT(CodesOf(MakeHealthyMachine()), IsEmpty());
}

TEST(MachineChecks, FindWhatTheInventedMachineHas) {
  EXPECT_THAT(CodesOf(ReadMachineFacts(*MakeTopologyRepository())),
              ElementsAre("slot-port-shared", "link-narrow"));
}

TEST(MachineChecks, NameFunctionsWithDomainsWhereThereAreSeveral) {
  MachineFacts facts = MakeHealthyMachine();
  facts.functions[kNetwork].fatal.total = 1;
  EXPECT_THAT(FoundBy("errors-fatal", facts), ElementsAre("01:00.0: 1, in SLOT1"));
  facts.machine.functions.back().address.domain = 1;
  EXPECT_THAT(FoundBy("errors-fatal", facts), ElementsAre("0000:01:00.0: 1, in SLOT1"));
}

/// As many slots as a table of 2 MB can hold, all silent, with one name and one port, and every
/// function that one domain can hold.
MachineFacts MakeHugeMachine() {
  constexpr std::size_t kSlots = 65000;
  MachineFacts facts = MakeHealthyMachine();
  MachineSlot slot = facts.machine.slots[kSlot1];
  slot.conflicts = {"a conflict", "and another"};
  slot.state = SlotState::kUnknown;
  facts.machine.slots.assign(kSlots, slot);
  MachineFunction card = facts.machine.functions[kNetwork];
  card.link.width = 4;
  facts.machine.functions = {facts.machine.functions[kNetworkPort]};
  for (unsigned place = 0x100; place < 0x10000; ++place) {
    card.address.address = {place >> 8U, (place >> 3U) & 31U, place & 7U};
    facts.machine.functions.push_back(card);
  }
  facts.functions.assign(facts.machine.functions.size(), facts.functions[kNetwork]);
  return facts;
}

TEST(MachineChecks, HandleTheLargestMachine) {
  const MachineFacts facts = MakeHugeMachine();
  std::map<std::string, std::size_t> counts;
  for (const CheckFinding& finding : FindWith(MachineChecks(), facts)) {
    counts[finding.code] = finding.objects.size();
  }
  EXPECT_EQ(counts["slot-silent"], 65000U);
  EXPECT_EQ(counts["slot-name-repeated"], 65000U);
  EXPECT_EQ(counts["link-narrow"], 65280U / 8);
}

}  // namespace
}  // namespace pciinfo
