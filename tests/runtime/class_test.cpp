// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "framework/add_to_vector_callback.h"
#include "tests/fakes/fewer_if_sanitized.h"
#include "tests/runtime/failure_of.h"
#include "tests/runtime/fan_repository.h"

namespace vtq {
namespace {

using NQZMVTQ20::ICIMInstance;
using NQZMVTQ20::TAddToVectorCallback;
using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TVTQException;

class ClassTest : public testing::Test {
 protected:
  void Commit(const std::string& id, unsigned short speed = 0) {
    const std::shared_ptr<ICIMInstance> fan = MakeFan(*nameSpace_, id);
    fan->SetProperty("Speed", TCIMValue(speed), {});
    fan->Commit({});
  }

  static std::string IdOf(const ICIMInstance& fan) {
    return static_cast<std::string>(fan.GetProperty("DeviceID", {}).value) + "@" +
           std::to_string(static_cast<int>(fan.GetProperty("Speed", {}).value));
  }

  std::string Enumerated() const {
    std::string ids;
    fans_->EnumerateInstances(
        [&ids](const std::shared_ptr<ICIMInstance>& fan) {
          ids += IdOf(*fan) + " ";
          return true;
        },
        0, {});
    return ids;
  }

  std::shared_ptr<Namespace> nameSpace_ = MakeFanNamespace();
  std::shared_ptr<Class> fans_ = nameSpace_->Find("ACME_Fan");
};

TEST_F(ClassTest, KnowsItsNameAndNamespace) {
  EXPECT_EQ(fans_->GetName({}), "ACME_Fan");
  EXPECT_EQ(fans_->GetNamespaceName(), "root/cimv2");
  EXPECT_EQ(fans_->GetNamespace({}), nameSpace_);
}

TEST_F(ClassTest, ThrowsForItsNamespaceWhenThatIsGone) {
  nameSpace_.reset();
  EXPECT_THROW((void)fans_->GetNamespace({}), TVTQException);
}

TEST_F(ClassTest, FindsTheInstanceThatReplacedAnother) {
  Commit("a", 1);
  Commit("b", 1);
  const std::string path = fans_->GetInstances()[0]->GetPath();
  for (unsigned short speed = 2; speed < 5; ++speed) {
    Commit("a", speed);
    ASSERT_TRUE(fans_->Find(path));
    EXPECT_EQ(IdOf(*fans_->Find(path)), "a@" + std::to_string(speed));
  }
  EXPECT_EQ(Enumerated(), "a@4 b@1 ");
}

TEST_F(ClassTest, ACommittedInstanceIsFoundAfterItsKeyWasSetToTheSameValue) {
  const auto fan = MakeFan(*nameSpace_, "a");
  fan->Commit({});
  fan->SetProperty("DeviceID", TCIMValue("a"), {});
  const std::string path = fans_->GetInstances()[0]->GetPath();
  EXPECT_EQ(fans_->Find(path), fans_->GetInstances()[0]);
}

TEST_F(ClassTest, KnowsThePositionAndTheNameOrderOfItsProperties) {
  EXPECT_EQ(fans_->PositionOf("Speed"), 0U);
  EXPECT_EQ(fans_->PositionOf("Bank"), 3U);
  EXPECT_EQ(FailureOf([this] { (void)fans_->PositionOf("speed"); }).text,
            "the class ACME_Fan has no property speed");
  EXPECT_THROW((void)fans_->PositionOf(""), TVTQException);
  EXPECT_THROW((void)fans_->PositionOf("Bank2"), TVTQException);
  EXPECT_EQ(fans_->GetNameOrder(), (std::vector<std::size_t>{3, 1, 2, 0}));
}

TEST_F(ClassTest, EnumeratesInCommitOrder) {
  Commit("c");
  Commit("a");
  Commit("b");
  EXPECT_EQ(Enumerated(), "c@0 a@0 b@0 ");
}

TEST_F(ClassTest, EnumerationStopsOnFalse) {
  Commit("a");
  Commit("b");
  int calls = 0;
  fans_->EnumerateInstances(
      [&calls](const std::shared_ptr<ICIMInstance>&) {
        ++calls;
        return false;
      },
      0, {});
  EXPECT_EQ(calls, 1);
}

TEST_F(ClassTest, AnEnumerationFillsAVector) {
  Commit("a");
  Commit("b");
  std::vector<std::shared_ptr<ICIMInstance>> found;
  fans_->EnumerateInstances(TAddToVectorCallback<ICIMInstance>(found), 0, {});
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(IdOf(*found[1]), "b@0");
}

TEST_F(ClassTest, WhatACallbackThrowsPassesThrough) {
  Commit("a");
  const auto callback = [](const std::shared_ptr<ICIMInstance>&) -> bool { throw 7; };
  EXPECT_THROW(fans_->EnumerateInstances(callback, 0, {}), int);
  EXPECT_EQ(Enumerated(), "a@0 ");
}

TEST_F(ClassTest, EnumeratingWithoutACallbackThrows) {
  EXPECT_THROW(fans_->EnumerateInstances(nullptr, 0, {}), TVTQException);
}

TEST_F(ClassTest, AnInstanceOfTheSamePathTakesThePlaceOfTheOld) {
  Commit("a", 1);
  Commit("b", 2);
  Commit("a", 3);
  EXPECT_EQ(Enumerated(), "a@3 b@2 ");
  EXPECT_EQ(fans_->GetInstances().size(), 2U);
}

TEST_F(ClassTest, CommittingOneInstanceTwiceKeepsIt) {
  const auto fan = MakeFan(*nameSpace_, "a");
  fan->SetProperty("Speed", TCIMValue(static_cast<unsigned short>(4)), {});
  fan->Commit({});
  Commit("b");
  fan->Commit({});
  EXPECT_EQ(Enumerated(), "a@4 b@0 ");
}

TEST_F(ClassTest, WhatIsCommittedDuringAnEnumerationIsNotPartOfIt) {
  Commit("a", 1);
  Commit("b", 1);
  std::string seen;
  fans_->EnumerateInstances(
      [this, &seen](const std::shared_ptr<ICIMInstance>& fan) {
        seen += IdOf(*fan) + " ";
        for (int number = 0; number < 100; ++number) Commit("new" + std::to_string(number));
        Commit("b", 2);
        return true;
      },
      0, {});
  EXPECT_EQ(seen, "a@1 b@1 ");
  EXPECT_EQ(fans_->GetInstances().size(), 102U);
  EXPECT_EQ(Enumerated().substr(0, 8), "a@1 b@2 ");
}

TEST_F(ClassTest, EnumerationsNest) {
  Commit("a");
  Commit("b");
  std::string seen;
  fans_->EnumerateInstances(
      [this, &seen](const std::shared_ptr<ICIMInstance>& fan) {
        seen += IdOf(*fan) + "[" + Enumerated() + "]";
        return true;
      },
      0, {});
  EXPECT_EQ(seen, "a@0[a@0 b@0 ]b@0[a@0 b@0 ]");
}

TEST_F(ClassTest, FindsACommittedInstanceByItsPath) {
  Commit("a");
  const auto found = fans_->Find("/root/cimv2:ACME_Fan.Bank=1,DeviceID=\"a\"");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found, fans_->GetInstances()[0]);
  EXPECT_EQ(fans_->Find("/root/cimv2:ACME_Fan.Bank=2,DeviceID=\"a\""), nullptr);
}

TEST_F(ClassTest, CountsInstancesThatAreNeitherCommittedNorDropped) {
  auto first = fans_->CreateInstance({});
  const auto second = MakeFan(*nameSpace_, "a");
  EXPECT_EQ(fans_->CountUncommitted(), 2U);
  first.reset();
  EXPECT_EQ(fans_->CountUncommitted(), 1U);
  second->Commit({});
  second->Commit({});
  EXPECT_EQ(fans_->CountUncommitted(), 0U);
}

// If each commit searched all instances, this would take minutes.
TEST_F(ClassTest, HoldsAHundredThousandInstances) {
  constexpr unsigned kCount = FewerIfSanitized(100000);
  for (unsigned round = 1; round <= 2; ++round) {
    for (unsigned number = 0; number < kCount; ++number) {
      Commit(std::to_string(number), static_cast<unsigned short>(round));
    }
  }
  ASSERT_EQ(fans_->GetInstances().size(), kCount);
  for (unsigned number = 0; number < kCount; ++number) {
    const auto fan =
        fans_->Find("/root/cimv2:ACME_Fan.Bank=1,DeviceID=\"" + std::to_string(number) + "\"");
    ASSERT_EQ(fan, fans_->GetInstances()[number]);
    ASSERT_EQ(IdOf(*fan), std::to_string(number) + "@2");
  }
}

}  // namespace
}  // namespace vtq
