// SPDX-License-Identifier: Apache-2.0
#include "host/model/filter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/base/errors.h"
#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

PciFunction Card() {
  PciFunction function;
  function.kind = "device";
  function.address = PciAddress{5, 0x1F, 3};
  function.vendorId = 0x8086;
  function.deviceId = 0x15B7;
  function.classCode = 2;
  function.subclass = 0;
  function.programmingInterface = 1;
  function.subsystemVendorId = 0xf1a5;
  function.subsystemId = 0x0001;
  return function;
}

bool Keeps(const std::vector<std::string>& texts, const Slot* slot = nullptr) {
  return Filter(texts).Keeps(Card(), slot);
}

std::string Error(const std::string& text) {
  try {
    Filter filter({text});
  } catch (const UsageError& error) {
    return error.what();
  }
  return "no error";
}

TEST(Filter, WithoutTermsKeepsEverything) {
  EXPECT_TRUE(Filter().IsEmpty());
  EXPECT_TRUE(Filter().Keeps(Card(), nullptr));
  EXPECT_TRUE(Filter().Keeps(Slot()));
}

TEST(Filter, MatchesFunctionsByTheirNumbers) {
  for (const char* term :
       {"vendor=8086", "vendor=0x8086", "device=15b7", "device=15B7", "subsystem=f1a5",
        "subsystem=f1a5:0001", "class=02", "class=0x02", "class=2", "class=0200", "class=020001",
        "bus=5", "bus=05", "address=05:1f.3", "address=0000:05:1f.3", "address=5:1f", "kind=device",
        "slot=none"}) {
    EXPECT_TRUE(Keeps({term})) << term;
  }
  for (const char* term : {"vendor=8087", "device=15b8", "subsystem=f1a6", "subsystem=f1a5:0002",
                           "class=03", "class=0201", "class=020000", "bus=6", "address=05:1f.2",
                           "address=0001:05:1f.3", "address=05:1e", "kind=bridge", "slot=1"}) {
    EXPECT_FALSE(Keeps({term})) << term;
  }
}

TEST(Filter, DoesNotMatchUnknownValues) {
  for (const char* term : {"vendor=0", "class=00", "bus=0", "address=00:00.0", "subsystem=0"}) {
    EXPECT_FALSE(Filter({term}).Keeps(PciFunction(), nullptr)) << term;
  }
}

TEST(Filter, AllTermsOfAnyTextMustMatch) {
  EXPECT_TRUE(Keeps({"vendor=8086,class=02"}));
  EXPECT_FALSE(Keeps({"vendor=8086,class=03"}));
  EXPECT_TRUE(Keeps({"class=03", "vendor=8086"}));
  EXPECT_FALSE(Keeps({"class=03", "vendor=8087"}));
}

TEST(Filter, MatchesSlotsByTheirNames) {
  Slot slot;
  slot.tag = "Tag 2";
  slot.designation = "PCIEX16_1  ";
  slot.id = 7;
  for (const char* term : {"slot=7", "slot=tag 2", "slot=pciex16_1"}) {
    EXPECT_TRUE(Keeps({term}, &slot)) << term;
    EXPECT_TRUE(Filter({term}).Keeps(slot)) << term;
  }
  EXPECT_FALSE(Keeps({"slot=none"}, &slot));
  EXPECT_FALSE(Filter({"slot=7,class=02"}).Keeps(slot));
  EXPECT_TRUE(Filter({"slot=7,class=02"}).Keeps(Card(), &slot));
}

TEST(Filter, ErrorsForBadTermsListTheKeys) {
  for (const char* text : {"foo=1", "vendor", "", "vendor=8086,", ",vendor=8086", "=1"}) {
    EXPECT_THAT(Error(text), testing::AllOf(HasSubstr("invalid filter"), HasSubstr("subsystem")))
        << text;
  }
}

TEST(Filter, ErrorsForBadValuesSayWhatIsExpected) {
  EXPECT_THAT(Error("vendor=intel"),
              testing::AllOf(HasSubstr("vendor=intel"), HasSubstr("hexadecimal")));
  for (const char* text :
       {"vendor=", "vendor=12345", "device=-1", "class=123", "class=12345", "class=1234567",
        "bus=100", "address=1", "address=00:20.0", "address=00:00.8", "kind=card",
        "slot=", "subsystem=1028:", "subsystem=:0738", "subsystem=x:y"}) {
    EXPECT_THAT(Error(text), testing::AllOf(HasSubstr("invalid filter"), HasSubstr("expected")))
        << text;
  }
}

TEST(Filter, HelpNamesTheKeys) { EXPECT_THAT(FilterHelp(), HasSubstr("subsystem")); }

std::vector<std::size_t> Counts(const std::vector<std::string>& texts) {
  const auto repository = MakeFixedRepository();
  const auto kept = KeptOf(*repository, Filter(texts));
  std::vector<std::size_t> counts;
  for (const auto& cimClass : kept->GetClasses()) counts.push_back(cimClass->GetInstances().size());
  return counts;
}

// Devices, bridges, slots, boards, functions in slots, functions on the board, listings.

TEST(FilterRepository, KeepsAFunctionWithItsSlotAndAssociation) {
  EXPECT_THAT(Counts({"vendor=10de"}), ElementsAre(1, 0, 1, 0, 1, 0, 0));
  EXPECT_THAT(Counts({"kind=bridge"}), ElementsAre(0, 2, 0, 0, 0, 2, 0));
}

TEST(FilterRepository, KeepsASlotThatIsNamedEvenIfItIsEmpty) {
  EXPECT_THAT(Counts({"slot=tag 2"}), ElementsAre(0, 0, 1, 0, 0, 0, 0));
  EXPECT_THAT(Counts({"slot=tag 1"}), ElementsAre(1, 0, 1, 0, 1, 0, 0));
  EXPECT_THAT(Counts({"slot=7"}), ElementsAre(1, 0, 3, 0, 1, 0, 0));
  EXPECT_THAT(Counts({"slot=none"}), ElementsAre(2, 2, 0, 0, 0, 4, 0));
}

TEST(FilterRepository, WithoutTermsKeepsTheFunctionsTheSlotsAndTheirAssociations) {
  EXPECT_THAT(Counts({}), ElementsAre(3, 2, 3, 0, 1, 4, 0));
}

TEST(FilterRepository, SharesInstancesWithTheOriginal) {
  const auto repository = MakeFixedRepository();
  const auto kept = KeptOf(*repository, Filter({"vendor=10de"}));
  const auto instance = kept->Find("QZMSG_PCIDevice")->GetInstances().front();
  EXPECT_EQ(repository->Find("QZMSG_PCIDevice")->Find(instance->GetPath()), instance);
}

TEST(FilterRepository, OfAnEmptyRepositoryIsEmpty) {
  const auto kept = KeptOf(*MakeEmptyRepository(), Filter({"class=02"}));
  EXPECT_THAT(kept->Find("QZMSG_PCIDevice")->GetInstances(), IsEmpty());
}

}  // namespace
}  // namespace pciinfo
