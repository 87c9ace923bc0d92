// SPDX-License-Identifier: Apache-2.0
#include "host/check/checks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <set>

#include "tests/host/check_facts_maker.h"

namespace pciinfo {
namespace {

struct Documented {
  std::string severity;
  std::string text;
};

/// The rows of the table in docs/findings.md: | `code` | severity | what | advice |
std::map<std::string, Documented> DocumentedChecks() {
  std::map<std::string, Documented> rows;
  std::ifstream file(FINDINGS_DOCUMENT);
  const std::regex pattern(R"(\| `([a-z-]+)` \| ([a-z]+) \| (.*) \|)");
  for (std::string line; std::getline(file, line);) {
    std::smatch match;
    if (std::regex_match(line, match, pattern)) rows[match[1]] = {match[2], match[3]};
  }
  return rows;
}

TEST(Checks, AreExactlyTheDocumentedOnes) {
  const std::map<std::string, Documented> documented = DocumentedChecks();
  for (const Check& check : AllChecks()) {
    const auto row = documented.find(check.code);
    ASSERT_NE(row, documented.end()) << check.code;
    EXPECT_EQ(row->second.severity, SeverityText(check.severity)) << check.code;
    EXPECT_EQ(row->second.text, std::string(check.what) + " | " + check.advice) << check.code;
  }
  EXPECT_EQ(documented.size(), AllChecks().size());
}

TEST(Checks, CodesAreUniqueAndAdviceIsOneLine) {
  std::set<std::string> codes;
  for (const Check& check : AllChecks()) {
    EXPECT_TRUE(codes.insert(check.code).second) << check.code;
    EXPECT_THAT(check.advice, testing::MatchesRegex("[^\n]+\\."));
  }
}

TEST(Checks, ASoundMachineHasNoFinding) {
  for (const CheckFinding& finding : RunChecks(MakeSoundFacts())) {
    ADD_FAILURE() << finding.check->code << ": " << finding.objects.front().object;
  }
}

TEST(Checks, FindingsHaveTheirObjects) {
  CheckFacts facts = MakeSoundFacts();
  facts.listingFailure = "no such program";
  const std::vector<CheckFinding> findings = RunChecks(facts);
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_STREQ(findings.front().check->code, "listing-missing");
  EXPECT_EQ(findings.front().objects.size(), 1U);
}

/// As many slots as a table of 2 MB can hold, all in use without a function, and every function
/// that one domain can hold, none of them published. With checks that walk through all slots for
/// each slot, the test takes minutes.
CheckFacts MakeHugeFacts() {
  constexpr unsigned kSlots = 65000;
  CheckFacts facts = MakeSoundFacts();
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

TEST(Checks, HandleTheLargestMachine) {
  const CheckFacts facts = MakeHugeFacts();
  std::map<std::string, std::size_t> counts;
  for (const CheckFinding& finding : RunChecks(facts)) {
    counts[finding.check->code] = finding.objects.size();
  }
  EXPECT_EQ(counts["slot-in-other-domain"], 65000U);
  EXPECT_EQ(counts["slot-address-dangling"], 65000U);
  EXPECT_EQ(counts["function-unpublished"], 65535U);
}

TEST(Checks, EmptyFactsDoNotCrash) { EXPECT_FALSE(RunChecks(CheckFacts()).empty()); }

}  // namespace
}  // namespace pciinfo
