// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "tests/runtime/failure_of.h"
#include "tests/runtime/fan_repository.h"

namespace vtq {
namespace {

using NQZMVTQ20::ICIMInstance;
using NQZMVTQ20::TCIMReference;
using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TVTQException;
using TCIMType = TCIMValue::TCIMType;

TCIMValue Number(int number) { return TCIMValue(static_cast<unsigned short>(number)); }

class InstanceTest : public testing::Test {
 protected:
  std::shared_ptr<Namespace> nameSpace_ = MakeFanNamespace();
  std::shared_ptr<ICIMInstance> fan_ = MakeFan(*nameSpace_, "a");
};

TEST_F(InstanceTest, ReadsBackWhatWasSet) {
  fan_->SetProperty("Speed", Number(42), {});
  EXPECT_EQ(fan_->GetProperty("Speed", {}).value, Number(42));
  EXPECT_EQ(fan_->GetProperty("Speed", {}).name, "Speed");
}

TEST_F(InstanceTest, ADeclaredPropertyThatIsNotSetIsNull) {
  EXPECT_TRUE(fan_->GetProperty("Speed", {}).value.IsNull());
}

TEST_F(InstanceTest, ANullValueUnsetsAProperty) {
  fan_->SetProperty("Speed", Number(42), {});
  fan_->SetProperty("Speed", TCIMValue(), {});
  EXPECT_TRUE(fan_->GetProperty("Speed", {}).value.IsNull());
}

TEST_F(InstanceTest, AnUndeclaredPropertyCanNeitherBeReadNorSet) {
  EXPECT_EQ(FailureOf([this] { (void)fan_->GetProperty("Colour", {}); }).text,
            "the class ACME_Fan has no property Colour");
  EXPECT_EQ(FailureOf([this] { fan_->SetProperty("speed", Number(1), {}); }).text,
            "the class ACME_Fan has no property speed");
}

TEST_F(InstanceTest, AValueOfAnotherTypeOrShapeIsRefused) {
  EXPECT_EQ(FailureOf([this] { fan_->SetProperty("Speed", TCIMValue(1U), {}); }).text,
            "ACME_Fan.Speed takes uint16, not uint32");
  EXPECT_EQ(FailureOf([this] { fan_->SetProperty("Notes", TCIMValue("x"), {}); }).text,
            "ACME_Fan.Notes takes string[], not string");
  const TCIMValue numbers(TCIMType(TCIMType::kUint16), 0, {});
  EXPECT_EQ(FailureOf([&] { fan_->SetProperty("Speed", numbers, {}); }).text,
            "ACME_Fan.Speed takes uint16, not uint16[]");
  EXPECT_TRUE(fan_->GetProperty("Speed", {}).value.IsNull());
}

TEST_F(InstanceTest, AnArrayIsHeldWithoutACopy) {
  const TCIMValue notes(TCIMType(TCIMType::kString), 1, {TCIMValue("one")});
  fan_->SetProperty("Notes", notes, {});
  EXPECT_EQ(&fan_->GetProperty("Notes", {}).value.GetArray(), &notes.GetArray());
}

TEST_F(InstanceTest, AReferenceMayOnlyNameItsTargets) {
  const auto link = nameSpace_->Find("ACME_Cools")->CreateInstance({});
  const TCIMValue pump(TCIMReference("root/cimv2", "ACME_Pump", {{"DeviceID", TCIMValue("p")}}));
  const TCIMValue fan(fan_->GetObjectReference({}));
  const TCIMType reference(TCIMType::kReference);
  link->SetProperty("Fan", fan, {});
  link->SetProperty("Anything", pump, {});
  link->SetProperty("Others", TCIMValue(reference, 2, {fan, TCIMValue()}), {});
  EXPECT_EQ(FailureOf([&] { link->SetProperty("Fan", pump, {}); }).text,
            "ACME_Cools.Fan may not name an instance of ACME_Pump");
  EXPECT_THROW(link->SetProperty("Others", TCIMValue(reference, 2, {fan, pump}), {}),
               TVTQException);
}

TEST_F(InstanceTest, ThePathIsMadeOfTheKeys) {
  EXPECT_EQ(fan_->GetObjectReference({}).ToString(), "/root/cimv2:ACME_Fan.Bank=1,DeviceID=\"a\"");
}

TEST_F(InstanceTest, ThePathFollowsAChangeOfAKeyUntilCommitted) {
  (void)fan_->GetObjectReference({});
  fan_->SetProperty("DeviceID", TCIMValue("b"), {});
  EXPECT_EQ(fan_->GetObjectReference({}).ToString(), "/root/cimv2:ACME_Fan.Bank=1,DeviceID=\"b\"");
}

TEST_F(InstanceTest, ThePathIsMadeOnce) {
  fan_->Commit({});
  const TCIMReference first = fan_->GetObjectReference({});
  EXPECT_EQ(&fan_->GetObjectReference({}).ToString(), &first.ToString());
}

TEST_F(InstanceTest, WithoutAKeyThereIsNeitherPathNorCommit) {
  fan_->SetProperty("Bank", TCIMValue(), {});
  EXPECT_EQ(FailureOf([this] { (void)fan_->GetObjectReference({}); }).text,
            "ACME_Fan.Bank is a key and not set");
  EXPECT_THROW(fan_->Commit({}), TVTQException);
  EXPECT_TRUE(nameSpace_->Find("ACME_Fan")->GetInstances().empty());
}

TEST_F(InstanceTest, AKeyOfACommittedInstanceStays) {
  fan_->Commit({});
  EXPECT_EQ(FailureOf([this] { fan_->SetProperty("DeviceID", TCIMValue("b"), {}); }).text,
            "ACME_Fan.DeviceID is a key of a committed instance and cannot be changed");
  EXPECT_THROW(fan_->SetProperty("Bank", TCIMValue(), {}), TVTQException);
  fan_->SetProperty("DeviceID", TCIMValue("a"), {});
  fan_->SetProperty("Speed", Number(9), {});
  EXPECT_EQ(fan_->GetProperty("Speed", {}).value, Number(9));
  EXPECT_EQ(fan_->GetObjectReference({}).ToString(), "/root/cimv2:ACME_Fan.Bank=1,DeviceID=\"a\"");
}

TEST_F(InstanceTest, KnowsItsClass) { EXPECT_EQ(fan_->GetClass({}), nameSpace_->Find("ACME_Fan")); }

TEST_F(InstanceTest, OutlivesItsClassAndSaysSo) {
  nameSpace_.reset();
  EXPECT_THROW((void)fan_->GetClass({}), TVTQException);
  EXPECT_THROW(fan_->SetProperty("Speed", Number(1), {}), TVTQException);
  EXPECT_THROW((void)fan_->GetProperty("Speed", {}), TVTQException);
  EXPECT_THROW(fan_->Commit({}), TVTQException);
}

std::vector<TCIMValue> ValuesOf(const std::shared_ptr<ICIMInstance>& instance) {
  const InstanceValues values(static_cast<const Instance&>(*instance));
  return {values[0], values[1], values[2], values[3]};
}

TEST_F(InstanceTest, HasTheSameValuesOnceCommitted) {
  std::vector<TCIMValue> expected = {TCIMValue(), TCIMValue("a"), TCIMValue(), Number(1)};
  EXPECT_EQ(ValuesOf(fan_), expected);
  fan_->Commit({});
  EXPECT_EQ(ValuesOf(fan_), expected);
  fan_->SetProperty("Speed", Number(9), {});
  expected[0] = Number(9);
  EXPECT_EQ(ValuesOf(fan_), expected);
  fan_->Commit({});
  fan_->SetProperty("Speed", TCIMValue(), {});
  fan_->Commit({});
  expected[0] = TCIMValue();
  EXPECT_EQ(ValuesOf(fan_), expected);
}

TEST_F(InstanceTest, HasItsReferencesOnceCommitted) {
  const auto link = nameSpace_->Find("ACME_Cools")->CreateInstance({});
  const TCIMValue fan(fan_->GetObjectReference({}));
  link->SetProperty("Fan", fan, {});
  link->Commit({});
  const InstanceValues values(static_cast<const Instance&>(*link));
  EXPECT_EQ(values[0], fan);
  EXPECT_TRUE(values[1].IsNull());
  EXPECT_EQ(link->GetProperty("Fan", {}).value, fan);
  EXPECT_THROW((void)values[3], std::out_of_range);
}

TEST_F(InstanceTest, CanBeCommittedAfterACommitWasRefused) {
  fan_->SetProperty("Bank", TCIMValue(), {});
  EXPECT_THROW(fan_->Commit({}), TVTQException);
  fan_->SetProperty("Bank", Number(2), {});
  fan_->Commit({});
  EXPECT_EQ(ValuesOf(fan_),
            (std::vector<TCIMValue>{TCIMValue(), TCIMValue("a"), TCIMValue(), Number(2)}));
}

TEST_F(InstanceTest, AnswersAValueByItsPosition) {
  fan_->Commit({});
  const std::shared_ptr<Class> fans = nameSpace_->Find("ACME_Fan");
  EXPECT_EQ(fans->GetInstances()[0]->GetValue(fans->PositionOf("DeviceID")), TCIMValue("a"));
}

}  // namespace
}  // namespace vtq
