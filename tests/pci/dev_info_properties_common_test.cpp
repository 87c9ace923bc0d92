// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include "framework/exception.h"
#include "tests/pci/properties_fixture.h"

using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TVTQException;

namespace {

const std::string kEntering = Entering("GetCommonDevProperties");
const std::string kExiting = Exiting("GetCommonDevProperties");
constexpr const char* kNoSlots = "3 SMBIOS version not support.";

const Lines kFromListing{Entering("GetLspciDeviceDescription"),
                         Exiting("GetLspciDeviceDescription")};
const Lines kFromFile{Entering("GetLspciDeviceDescription"), Exiting("GetLspciDeviceDescription"),
                      Entering("GetDeviceDescription"), Exiting("GetDeviceDescription")};

constexpr const char* kLocation = "PCI Bus  0, device  31, function  3";

}  // namespace

class CommonPropertiesTest : public PropertiesTest {
 protected:
  int GetCommon() { return Collector().GetCommonDevProperties(records.begin(), &properties); }

  // The properties from the keys routine, for a class that fails as requested.
  TPropertyMap Keys(const std::shared_ptr<NQZMVTQ20::ICIMClass>& cimClass) {
    TPropertyMap keys;
    EXPECT_EQ(TPciDevInfo(cimClass, &provider).PopulateKeyProperties(&keys), 0);
    return keys;
  }

  TPropertyMap properties;
};

TEST_F(CommonPropertiesTest, KeysNameTheComputerSystem) {
  const TPropertyMap keys = Keys(deviceClass);
  EXPECT_EQ(keys, (TPropertyMap{{"SystemCreationClassName", TCIMValue("CIM_ComputerSystem")},
                                {"SystemName", TCIMValue("host.example")}}));
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(CommonPropertiesTest, KeysThatTheFrameworkLeavesEmptyAreEmpty) {
  Fake().systemCreationClassName = Fake().systemName = "";
  const TPropertyMap keys = Keys(deviceClass);
  EXPECT_EQ(Text(keys, "SystemCreationClassName"), "");
  EXPECT_EQ(Text(keys, "SystemName"), "");
}

TEST_F(CommonPropertiesTest, FailureOfTheFirstKeyLeavesBothEmpty) {
  Fake().systemCreationClassNameFails = true;
  const TPropertyMap keys = Keys(deviceClass);
  EXPECT_EQ(Text(keys, "SystemCreationClassName"), "");
  EXPECT_EQ(Text(keys, "SystemName"), "");
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(CommonPropertiesTest, FailureOfTheSystemNameKeepsTheCreationClassName) {
  Fake().systemNameFails = true;
  const TPropertyMap keys = Keys(deviceClass);
  EXPECT_EQ(Text(keys, "SystemCreationClassName"), "CIM_ComputerSystem");
  EXPECT_EQ(Text(keys, "SystemName"), "");
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(CommonPropertiesTest, FailureOfTheNamespaceLeavesBothKeysEmpty) {
  const auto faulty = std::make_shared<FaultyClass>(deviceClass);
  faulty->onGetNamespace = [] { throw TVTQException("gone"); };
  const TPropertyMap keys = Keys(faulty);
  EXPECT_EQ(Text(keys, "SystemCreationClassName"), "");
  EXPECT_EQ(Text(keys, "SystemName"), "");
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(CommonPropertiesTest, OtherExceptionsLeaveTheKeys) {
  const auto faulty = std::make_shared<FaultyClass>(deviceClass);
  faulty->onGetNamespace = [] { throw std::runtime_error("broken"); };
  TPciDevInfo collector(faulty, &provider);
  EXPECT_THROW(collector.PopulateKeyProperties(&properties), std::runtime_error);
}

TEST_F(CommonPropertiesTest, CommonPropertiesOfAFunction) {
  EXPECT_EQ(GetCommon(), 0);
  EXPECT_EQ(properties, (TPropertyMap{{"VendorID", Word(0x8086)},
                                      {"PciDeviceID", Word(0x1234)},
                                      {"SystemCreationClassName", TCIMValue("CIM_ComputerSystem")},
                                      {"SystemName", TCIMValue("host.example")},
                                      {"ClassCode", Byte(4)},
                                      {"Subclass", Byte(3)},
                                      {"ProgrammingInterface", Byte(0x12)},
                                      {"Revision", Byte(0x11)},
                                      {"Description", TCIMValue("Audio device: Example")},
                                      {"Location", TCIMValue(kLocation)},
                                      {"DeviceID", TCIMValue(kLocation)}}));
  EXPECT_EQ(Fake().log, Join({{kEntering, kNoSlots}, kFromListing, {kExiting}}));
}

TEST_F(CommonPropertiesTest, VendorMismatchEmptiesTheMapAndIsLoggedInDecimal) {
  TheRecord().configSpace[0] = 0x87;
  properties.emplace("CreationClassName", TCIMValue(kPciDeviceClass));
  EXPECT_EQ(GetCommon(), 1);
  EXPECT_TRUE(properties.empty());
  EXPECT_EQ(Fake().log, (Lines{kEntering,
                               "2 Configuration vendor id 32903 and devices file vendor id 32902 "
                               "did not match."}));
}

TEST_F(CommonPropertiesTest, DeviceMismatchEmptiesTheMapAndIsLoggedInDecimal) {
  TheRecord().configSpace[3] = 0xFF;
  properties.emplace("CreationClassName", TCIMValue(kPciDeviceClass));
  EXPECT_EQ(GetCommon(), 1);
  EXPECT_TRUE(properties.empty());
  EXPECT_EQ(Fake().log, (Lines{kEntering,
                               "2 Configuration device id 65332 and devices file device id 4660 "
                               "did not match."}));
}

TEST_F(CommonPropertiesTest, VendorIsComparedFirst) {
  TheRecord().configSpace.fill(0xFF);
  EXPECT_EQ(GetCommon(), 1);
  EXPECT_EQ(Fake().log.size(), 2U);
  EXPECT_EQ(Fake().log[1],
            "2 Configuration vendor id 65535 and devices file vendor id 32902 did not match.");
}

TEST_F(CommonPropertiesTest, PropertiesThatAreThereStay) {
  properties.emplace("Description", TCIMValue("mine"));
  properties.emplace("VendorID", Word(1));
  EXPECT_EQ(GetCommon(), 0);
  EXPECT_EQ(Text(properties, "Description"), "mine");
  EXPECT_EQ(Number(properties, "VendorID"), 1U);
}

TEST_F(CommonPropertiesTest, ProcessingGoesOnWithoutKeys) {
  Fake().systemCreationClassNameFails = true;
  EXPECT_EQ(GetCommon(), 0);
  EXPECT_EQ(Text(properties, "SystemCreationClassName"), "");
  EXPECT_EQ(Text(properties, "DeviceID"), kLocation);
  EXPECT_EQ(Fake().log.back(), kExiting);
}

TEST_F(CommonPropertiesTest, SlotNumberIsTheTagOfTheSlotThatTheBusLeadsTo) {
  processState.slotIDRetrievalType = 2;
  slotBusCollectionVect = {{1, 0, 3, 3, 3}, {2, 0, 0, 0, 0}};
  EXPECT_EQ(GetCommon(), 0);
  EXPECT_EQ(properties.at("UINumber"), Byte(2));
  EXPECT_EQ(Fake().log, Join({{kEntering, "3 Entering correlateDeviceAndSlot", "3 not match slot",
                               "3 Exiting correlateDeviceAndSlot"},
                              kFromListing,
                              {kExiting}}));
}

TEST_F(CommonPropertiesTest, SlotNumberIsTheLowByteOfTheTag) {
  processState.slotIDRetrievalType = 1;
  slotBusCollectionVect = {{0x105, 0, 0, 0, 0}};
  GetCommon();
  EXPECT_EQ(properties.at("UINumber"), Byte(5));
  slotBusCollectionVect = {{0xFFFF, 0, 0, 0, 0}};
  properties.clear();
  GetCommon();
  EXPECT_EQ(properties.at("UINumber"), Byte(255)) << "only the answer \"no slot\" gives no number";
}

TEST_F(CommonPropertiesTest, FunctionInNoSlotHasNoSlotNumber) {
  processState.slotIDRetrievalType = 2;
  EXPECT_EQ(GetCommon(), 0);
  EXPECT_EQ(properties.count("UINumber"), 0U);
  EXPECT_EQ(
      Fake().log,
      Join({{kEntering, "3 Entering correlateDeviceAndSlot", "0 Exiting correlateDeviceAndSlot"},
            kFromListing,
            {kExiting}}));
}

TEST_F(CommonPropertiesTest, SlotTableIsNotLookedAtWithoutBusInformation) {
  slotBusCollectionVect = {{2, 0, 0, 0, 0}};
  EXPECT_EQ(GetCommon(), 0);
  EXPECT_EQ(properties.count("UINumber"), 0U);
}

TEST_F(CommonPropertiesTest, LegacyListingDescribesWhatTheListingDoesNotKnow) {
  Fake().commands["lspci"] = [] { return std::string("00:00.0 other\n"); };
  MachineTree::Write("/proc/pci", "  Bus  0, device  31, function  3:\n    Audio: Legacy.\n");
  EXPECT_EQ(GetCommon(), 0);
  EXPECT_EQ(Text(properties, "Description"), "Audio: Legacy.");
  EXPECT_EQ(Fake().log, Join({{kEntering, kNoSlots}, kFromFile, {kExiting}}));
}

TEST_F(CommonPropertiesTest, ListingIsPreferred) {
  MachineTree::Write("/proc/pci", "  Bus  0, device  31, function  3:\n    Audio: Legacy.\n");
  GetCommon();
  EXPECT_EQ(Text(properties, "Description"), "Audio device: Example");
}

TEST_F(CommonPropertiesTest, UnknownFunctionIsDescribedByItsIdentifiersInDecimal) {
  FakeFunction unknown;
  unknown.vendorId = 0x1234;
  unknown.deviceId = 0x5678;
  Put(unknown);
  EXPECT_EQ(GetCommon(), 0);
  EXPECT_EQ(Text(properties, "Description"), "PCI Vendor ID 4660  PCI Device ID 22136");
  EXPECT_EQ(Fake().log,
            (Lines{kEntering, kNoSlots, Entering("GetLspciDeviceDescription"),
                   Exiting("GetLspciDeviceDescription"), Entering("GetDeviceDescription"),
                   "2 Could not open PCI description file.", kExiting}));
}

TEST_F(CommonPropertiesTest, BlankLegacyDescriptionCountsAsNone) {
  Fake().commands["lspci"] = [] { return std::string("00:00.0 other\n"); };
  MachineTree::Write("/proc/pci", "  Bus  0, device  31, function  3:\n    \n");
  GetCommon();
  EXPECT_EQ(Text(properties, "Description"), "PCI Vendor ID 32902  PCI Device ID 4660");
}

TEST_F(CommonPropertiesTest, ListingKeyIsHexadecimalAndLocationDecimal) {
  FakeFunction function;
  function.bus = 0x3a;
  function.device = 0x1f;
  function.function = 7;
  Put(function);
  Fake().commands["lspci"] = [] { return std::string("3a:1f.7 Last\n"); };
  GetCommon();
  EXPECT_EQ(Text(properties, "Description"), "Last");
  EXPECT_EQ(Text(properties, "Location"), "PCI Bus 58, device  31, function  7");
  EXPECT_EQ(Text(properties, "DeviceID"), "PCI Bus 58, device  31, function  7");
}
