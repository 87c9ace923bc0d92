// SPDX-License-Identifier: Apache-2.0
#include "pci/dev_info.h"

#include <stdexcept>
#include <type_traits>

#include "framework/exception.h"
#include "tests/fakes/slot_record.h"
#include "tests/pci/oem_strings.h"
#include "tests/pci/pci_fixture.h"

using NQZMVTQ20::ICIMInstance;
using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TVTQException;

namespace {

using Made = std::vector<ICIMInstance*>;

constexpr const char* kEnteringType = "3 Entering GetSlotIDRetrievalType";
constexpr const char* kSlotsTell =
    "3 Exiting GetSlotIDRetrievalType, current SMBIOS version >= 2.6 and type 9 contains bus info";

// A slot in use at 0000:03:00.0.
std::vector<unsigned char> SlotOnBusThree() {
  SlotRecord slot;
  slot.bus = 3;
  return slot.Bytes();
}

}  // namespace

// A process in which no collector has been created yet.
class DevInfoTest : public PluginTest {};

TEST_F(DevInfoTest, KeepsNoDataInTheObject) {
  EXPECT_EQ(sizeof(TPciDevInfo), sizeof(TPci));
  EXPECT_TRUE((std::is_base_of_v<TPci, TPciDevInfo>));
}

TEST_F(DevInfoTest, CollectorWithoutProviderLeavesTheSlotDataAlone) {
  Fake().smBios.structures = {SlotOnBusThree()};
  const TPciDevInfo collector(Class(kPciDeviceClass));
  EXPECT_EQ(processState.slotIDRetrievalType, 0U);
  EXPECT_FALSE(processState.slotDataLoaded);
  EXPECT_TRUE(slotLocationVect.empty());
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(DevInfoTest, CollectorWithoutProviderKeepsItsClassOnly) {
  const std::shared_ptr<vtq::Class> deviceClass = Class(kPciDeviceClass);
  TPciDevInfo collector(deviceClass);
  EXPECT_EQ(collector.GetCIMClass(), deviceClass.get());
  EXPECT_EQ(collector.GetInfoHandle(), nullptr);
}

TEST_F(DevInfoTest, FirstCollectorLoadsTheSlotData) {
  Fake().smBios.structures = {SlotOnBusThree()};
  MachineTree::Write("/sys/bus/pci/devices/0000:03:00.0/config", AsText(Header(FakeFunction())));
  auto collector = Make<TPciDevInfo>(kPciDeviceClass);
  EXPECT_EQ(collector.GetInfoHandle(), &provider);
  EXPECT_TRUE(processState.slotDataLoaded);
  EXPECT_EQ(processState.slotIDRetrievalType, 2U);
  ASSERT_EQ(slotLocationVect.size(), 1U);
  EXPECT_EQ(slotLocationVect[0].bus, 3);
  ASSERT_EQ(slotBusCollectionVect.size(), 1U);
  EXPECT_EQ(slotBusCollectionVect[0].tag, 1);
  EXPECT_EQ(Fake().log, (Lines{kEnteringType, kSlotsTell, "3 Entering readPCISlotLocation",
                               "3 Exiting readPCISlotLocation", "3 Entering readPCIConfigForSlots",
                               "3 segNum = 0, bus = 3, dev = 0, func = 0",
                               "3 /sys/bus/pci/devices/0000:03:00.0/config",
                               "3 Exiting readPCIConfigForSlots"}));
}

TEST_F(DevInfoTest, SlotsThatCannotBeReadLeaveTheTablesEmpty) {
  Fake().smBios.structures = {SlotOnBusThree()};
  Fake().smBios.loadsBeforeFailure = 1;
  Make<TPciDevInfo>(kPciDeviceClass);
  EXPECT_EQ(processState.slotIDRetrievalType, 2U);
  EXPECT_TRUE(slotLocationVect.empty());
  EXPECT_TRUE(slotBusCollectionVect.empty());
  EXPECT_EQ(Fake().log, (Lines{kEnteringType, kSlotsTell, "3 Entering readPCISlotLocation",
                               "0 Unable to open SMBIOS library error: 3"}));
}

TEST_F(DevInfoTest, SlotDataFromOemStringsIsLoadedAndLeadsToNoBus) {
  Fake().smBios.version = "2.5";
  Fake().smBios.structures = {OemStrings({"$T9 SID:0x0001 B:0x03"})};
  MachineTree::Write("/sys/bus/pci/devices/0000:03:00.0/config", AsText(Header(FakeFunction())));
  Make<TPciDevInfo>(kPciDeviceClass);
  EXPECT_EQ(processState.slotIDRetrievalType, 1U);
  EXPECT_EQ(slotLocationVect.size(), 1U);
  EXPECT_TRUE(slotBusCollectionVect.empty()) << "such strings do not tell that a slot is in use";
}

TEST_F(DevInfoTest, OnlyTheFirstCollectorLoadsTheSlotData) {
  Fake().smBios.structures = {SlotOnBusThree()};
  Make<TPciDevInfo>(kPciDeviceClass);
  Fake().log.clear();
  Fake().smBios.structures = {SlotOnBusThree(), SlotOnBusThree()};
  Make<TPciDevInfo>(kPciBridgeClass);
  EXPECT_EQ(slotLocationVect.size(), 1U);
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(DevInfoTest, FirstCollectorWithAProviderLoadsAfterOneWithout) {
  Fake().smBios.structures = {SlotOnBusThree()};
  TPciDevInfo(Class(kPciDeviceClass));
  Make<TPciDevInfo>(kPciDeviceClass);
  EXPECT_EQ(processState.slotIDRetrievalType, 2U);
}

TEST_F(DevInfoTest, CollectorWithoutProviderKeepsWhatAnEarlierOneLoaded) {
  Fake().smBios.structures = {SlotOnBusThree()};
  Make<TPciDevInfo>(kPciDeviceClass);
  Fake().log.clear();
  const TPciDevInfo collector(Class(kPciDeviceClass));
  EXPECT_EQ(processState.slotIDRetrievalType, 2U);
  EXPECT_EQ(slotLocationVect.size(), 1U);
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(DevInfoTest, FailedLoadIsNeverTriedAgain) {
  Fake().smBios.loadStatus = 4;
  Make<TPciDevInfo>(kPciDeviceClass);
  EXPECT_EQ(Fake().log, (Lines{kEnteringType, "0 Unable to open SMBIOS library error: 4"}));
  EXPECT_TRUE(processState.slotDataLoaded);
  Fake().smBios.loadStatus = 0;
  Fake().smBios.structures = {SlotOnBusThree()};
  Fake().log.clear();
  Make<TPciDevInfo>(kPciDeviceClass);
  EXPECT_EQ(processState.slotIDRetrievalType, 0U);
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(DevInfoTest, WithoutBusInformationNoSlotIsRead) {
  SlotRecord shortSlot;
  shortSlot.length = 0x0D;
  Fake().smBios.structures = {shortSlot.Bytes()};
  Make<TPciDevInfo>(kPciDeviceClass);
  EXPECT_EQ(Fake().log,
            (Lines{kEnteringType,
                   "3 Exiting GetSlotIDRetrievalType, current SMBIOS version >= 2.6 and type 9 "
                   "contains no bus info"}));
}

TEST_F(DevInfoTest, EachMapBecomesAnInstance) {
  Made instances(1, nullptr);
  Fake().smBios.loadStatus = 2;
  auto collector = Make<TPciDevInfo>(kPciDeviceClass);
  Fake().log.clear();
  collector.GeneratePciInstances(&instances, {MapOf("a"), MapOf("b")}, kPciDeviceClass);
  EXPECT_EQ(instances.size(), 3U) << "appended to what was there";
  ASSERT_EQ(Instances(kPciDeviceClass).size(), 2U);
  EXPECT_EQ(Text(*Instances(kPciDeviceClass)[0], "DeviceID"), "a");
  EXPECT_EQ(Text(*Instances(kPciDeviceClass)[1], "DeviceID"), "b");
  EXPECT_EQ(Fake().log, (Lines{Generating(kPciDeviceClass), Generating(kPciDeviceClass)}));
}

TEST_F(DevInfoTest, EqualMapsAreNotTakenForOne) {
  Made instances;
  auto collector = Make<TPciDevInfo>(kPciDeviceClass);
  collector.GeneratePciInstances(&instances, {MapOf("a"), MapOf("a")}, kPciDeviceClass);
  EXPECT_EQ(instances.size(), 2U);
}

TEST_F(DevInfoTest, NoMapsMakeNoInstances) {
  Made instances;
  Make<TPciDevInfo>(kPciDeviceClass).GeneratePciInstances(&instances, {}, kPciDeviceClass);
  EXPECT_TRUE(instances.empty());
}

TEST_F(DevInfoTest, RefusedMapIsLoggedAndTheOthersStillBecomeInstances) {
  TPropertyMap undeclared = MapOf("b");
  undeclared.emplace("Undeclared", TCIMValue("x"));
  std::string why;
  try {
    Class(kPciDeviceClass)->CreateInstance({})->SetProperty("Undeclared", TCIMValue("x"), {});
  } catch (const TVTQException& failure) {
    why = failure.what();
  }
  Fake().smBios.loadStatus = 2;
  auto collector = Make<TPciDevInfo>(kPciDeviceClass);
  Fake().log.clear();
  Made instances;
  collector.GeneratePciInstances(&instances, {MapOf("a"), undeclared, MapOf("c")}, kPciDeviceClass);
  EXPECT_EQ(instances.size(), 2U);
  ASSERT_EQ(Instances(kPciDeviceClass).size(), 2U);
  EXPECT_EQ(Text(*Instances(kPciDeviceClass)[1], "DeviceID"), "c");
  EXPECT_EQ(Fake().log, (Lines{Generating(kPciDeviceClass), Generating(kPciDeviceClass),
                               Refused(kPciDeviceClass, why), Generating(kPciDeviceClass)}));
}

TEST_F(DevInfoTest, OtherExceptionsLeaveTheInstancesThatWereMade) {
  const auto faulty = std::make_shared<FaultyClass>(Class(kPciDeviceClass));
  faulty->onCreate = [](int count) {
    if (count == 2) throw std::runtime_error("broken");
  };
  TPciDevInfo collector(faulty, &provider);
  Made instances;
  EXPECT_THROW(collector.GeneratePciInstances(&instances, {MapOf("a"), MapOf("b"), MapOf("c")},
                                              kPciDeviceClass),
               std::runtime_error);
  EXPECT_EQ(instances.size(), 1U);
  EXPECT_TRUE(Fake().LogOf(2).empty());
}
