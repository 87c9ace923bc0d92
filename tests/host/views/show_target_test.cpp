// SPDX-License-Identifier: Apache-2.0
#include "host/views/show_target.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/base/errors.h"
#include "tests/fakes/pci_schema.h"
#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;

template <class Error>
std::string FailureFor(const std::string& name) {
  try {
    FindNamed(*MakeFixedRepository(), name);
  } catch (const Error& error) {
    return error.what();
  }
  return "no failure";
}

TEST(ShowTarget, FindsFunctionsByTheirAddress) {
  for (const char* name :
       {"01:00.0", "1:0.0", "0000:01:00.0", "PCI Bus  1, device   0, function  0"}) {
    const auto repository = MakeFixedRepository();
    const Shown shown = FindNamed(*repository, name);
    EXPECT_EQ(shown.function->deviceId, 0x1B80U) << name;
    EXPECT_EQ(shown.slot->tag, "Tag 1");
    EXPECT_FALSE(shown.isOnBoard);
  }
}

TEST(ShowTarget, FindsFunctionsOnTheBoard) {
  const auto repository = MakeFixedRepository();
  const Shown shown = FindNamed(*repository, "00:01.0");
  EXPECT_EQ(shown.function->kind, "bridge");
  EXPECT_FALSE(shown.slot.has_value());
  EXPECT_TRUE(shown.isOnBoard);
}

TEST(ShowTarget, FindsSlotsByTheirNames) {
  for (const char* name : {"Tag 1", "tag 1", "pcieX16_1"}) {
    const auto repository = MakeFixedRepository();
    const Shown shown = FindNamed(*repository, name);
    EXPECT_EQ(shown.slot->tag, "Tag 1") << name;
    EXPECT_FALSE(shown.function.has_value());
    EXPECT_EQ(shown.slot->functions.size(), 1U);
  }
}

TEST(ShowTarget, FindsEveryInstanceByItsPath) {
  const auto repository = MakeFixedRepository();
  for (const auto& cimClass : repository->GetClasses()) {
    for (const auto& instance : cimClass->GetInstances()) {
      EXPECT_EQ(FindNamed(*repository, instance->GetPath()).instance, instance);
    }
  }
}

TEST(ShowTarget, RefusesANameOfSeveralSlots) {
  EXPECT_THAT(FailureFor<UsageError>("7"),
              AllOf(HasSubstr("\"7\""), HasSubstr("Tag 1 (PCIEX16_1)"), HasSubstr("Tag 3")));
}

TEST(ShowTarget, ErrorsNameTheMissingObject) {
  EXPECT_THAT(FailureFor<NotFound>("02:00.0"),
              AllOf(HasSubstr("02:00.0"), HasSubstr("pciinfo devices")));
  EXPECT_THAT(FailureFor<NotFound>("0001:01:00.0"),
              AllOf(HasSubstr("0001:01:00.0"), HasSubstr("domain 0000")));
  EXPECT_THAT(FailureFor<NotFound>("Slot 99"),
              AllOf(HasSubstr("\"Slot 99\""), HasSubstr("pciinfo slots")));
  EXPECT_THAT(FailureFor<NotFound>("/root/cimv2:QZMSG_PCIRawData.Command=\"x\""),
              HasSubstr("pciinfo instances QZMSG_PCIRawData"));
}

TEST(ShowTarget, RefusesTextsThatAreNotPaths) {
  EXPECT_THAT(FailureFor<UsageError>("/root/cimv2:QZMSG_PCIRawData.Nothing=1"),
              HasSubstr("Nothing"));
  EXPECT_THAT(FailureFor<UsageError>("/"), HasSubstr("not an object path"));
}

TEST(ShowTarget, CollectsTheClassOfAPath) {
  EXPECT_THAT(ClassesToFind(PciSchema(), "01:00.0"),
              AllOf(Contains("QZMSG_DeviceInSlot"), testing::Not(Contains("QZMSG_PCIRawData"))));
  EXPECT_THAT(ClassesToFind(PciSchema(), "/root/cimv2:QZMSG_PCIRawData.Command=\"x\""),
              Contains("QZMSG_PCIRawData"));
  EXPECT_THROW(ClassesToFind(PciSchema(), "/root/cimv2:Other.x=1"), UsageError);
  EXPECT_THROW(ClassesToFind(PciSchema(), "/"), UsageError);
}

}  // namespace
}  // namespace pciinfo
