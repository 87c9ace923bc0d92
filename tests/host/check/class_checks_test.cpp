// SPDX-License-Identifier: Apache-2.0
#include "host/check/class_checks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "tests/host/class_facts_maker.h"

namespace pciinfo {
namespace {

TEST(ClassChecks, ASoundMachineHasNoFinding) {
  for (const CheckFinding& finding : FindWith(ClassChecks(), MakeSoundFacts())) {
    ADD_FAILURE() << finding.code << ": " << finding.objects.front().object;
  }
}

TEST(ClassChecks, FindingsHaveTheirObjects) {
  ClassFacts facts = MakeSoundFacts();
  facts.listingFailure = "no such program";
  const std::vector<CheckFinding> findings = FindWith(ClassChecks(), facts);
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_STREQ(findings.front().code, "listing-missing");
  EXPECT_EQ(findings.front().objects.size(), 1U);
}

/// As many slots as a table of 2 MB can hold, all in use without a function, and every function
/// that one domain can hold, none of them published. With checks that walk through all slots for
/// each slot, the test takes minutes.
ClassFacts MakeHugeFacts() {
  constexpr unsigned kSlots = 65000;
  ClassFacts facts = MakeSoundFacts();
  const SlotRecord record = facts.slotRecords.records.front();
  facts.published.assign(kSlots, facts.published.front());
  facts.slots.slots.clear();
  facts.slotRecords.records.assign(kSlots, record);
  for (unsigned number = 1; number <= kSlots; ++number) {
    facts.slotRecords.records[number - 1].segment = 1;
    facts.slots.slots.push_back(PublishedSlot(number));
  }
  for (unsigned place = 0; place < 0x10000; ++place) {
    const PciAddress address{place >> 8U, (place >> 3U) & 31U, place & 7U};
    facts.functions[{0, address}] = {};
    ListedFunction line = facts.list->front();
    line.address = address;
    facts.list->push_back(line);
  }
  return facts;
}

TEST(ClassChecks, HandleTheLargestMachine) {
  const ClassFacts facts = MakeHugeFacts();
  std::map<std::string, std::size_t> counts;
  for (const CheckFinding& finding : FindWith(ClassChecks(), facts)) {
    counts[finding.code] = finding.objects.size();
  }
  EXPECT_EQ(counts["slot-in-other-domain"], 65000U);
  EXPECT_EQ(counts["slot-address-dangling"], 65000U);
  EXPECT_EQ(counts["function-unpublished"], 65535U);
}

TEST(ClassChecks, EmptyFactsDoNotCrash) {
  EXPECT_FALSE(FindWith(ClassChecks(), ClassFacts()).empty());
}

}  // namespace
}  // namespace pciinfo
