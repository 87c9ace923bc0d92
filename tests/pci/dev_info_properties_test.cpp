// SPDX-License-Identifier: Apache-2.0
#include "tests/pci/properties_fixture.h"

using NQZMVTQ20::TCIMValue;

namespace {

using ECIMType = TCIMValue::TCIMType::ECIMType;

Lines Names(const TPropertyMap& properties) {
  Lines names;
  for (const auto& [name, value] : properties) names.push_back(name);
  return names;
}

const std::string kEntering = Entering("GetCommonDevProperties");
const std::string kExiting = Exiting("GetCommonDevProperties");
const std::string kEnteringDevice = Entering("PopulatePciDeviceProperties");
const std::string kExitingDevice = Exiting("PopulatePciDeviceProperties");
constexpr const char* kNoSlots = "3 SMBIOS version not support.";

const Lines kFromListing{Entering("GetLspciDeviceDescription"),
                         Exiting("GetLspciDeviceDescription")};

}  // namespace

class FunctionPropertiesTest : public PropertiesTest {
 protected:
  TPropertyMap Device() { return Collector().PopulatePciDeviceProperties(records.begin()); }
  TPropertyMap Bridge() { return Collector().PopulatePciBridgeProperties(records.begin()); }
};

TEST_F(FunctionPropertiesTest, DeviceAddsItsClassNameAndSubsystem) {
  const TPropertyMap device = Device();
  EXPECT_EQ(device.at("CreationClassName"), TCIMValue("QZMSG_PCIDevice"));
  EXPECT_EQ(device.at("SubsystemVendorID"), Word(0xF1A5));
  EXPECT_EQ(device.at("SubsystemID"), Word(0xCAFE));
  EXPECT_EQ(Names(device),
            (Lines{"ClassCode", "CreationClassName", "Description", "DeviceID", "Location",
                   "PciDeviceID", "ProgrammingInterface", "Revision", "Subclass", "SubsystemID",
                   "SubsystemVendorID", "SystemCreationClassName", "SystemName", "VendorID"}))
      << "no resources, no IRQ";
  EXPECT_EQ(
      Fake().log,
      Join({{kEnteringDevice, kEntering, kNoSlots}, kFromListing, {kExiting, kExitingDevice}}));
}

TEST_F(FunctionPropertiesTest, SubsystemZeroIsReported) {
  Put(FakeFunction());
  EXPECT_EQ(Device().at("SubsystemVendorID"), Word(0));
  EXPECT_EQ(Device().at("SubsystemID"), Word(0));
}

TEST_F(FunctionPropertiesTest, RejectedDeviceIsAnEmptyMapAndLogsNoExiting) {
  TheRecord().configSpace[0] = 0x87;
  EXPECT_TRUE(Device().empty());
  EXPECT_EQ(Fake().log, (Lines{kEnteringDevice, kEntering,
                               "2 Configuration vendor id 32903 and devices file vendor id 32902 "
                               "did not match."}));
}

TEST_F(FunctionPropertiesTest, RegionsAreSortedIntoMemoryAndIo) {
  TheRecord().baseAddress = {0xE001, 0, 0xF7E0000C, 0, 0, 0};
  TheRecord().regionSize = {0x20, 0, 0x4000, 0, 0, 0};
  const TPropertyMap device = Device();
  EXPECT_EQ(Numbers(device.at("IOAddress")), std::vector<unsigned>{0xE000});
  EXPECT_EQ(Numbers(device.at("IOLength")), std::vector<unsigned>{0x20});
  EXPECT_EQ(Numbers(device.at("MEMAddress")), std::vector<unsigned>{0xF7E00000});
  EXPECT_EQ(Numbers(device.at("MEMLength")), std::vector<unsigned>{0x4000});
  EXPECT_EQ(device.at("IOAddress").GetType().GetCode(), ECIMType::kUint16);
  EXPECT_EQ(device.at("IOLength").GetType().GetCode(), ECIMType::kUint16);
  EXPECT_EQ(device.at("MEMAddress").GetType().GetCode(), ECIMType::kUint32);
  EXPECT_EQ(device.at("MEMLength").GetType().GetCode(), ECIMType::kUint32);
}

TEST_F(FunctionPropertiesTest, RegionsKeepTheirOrder) {
  TheRecord().baseAddress = {0x5000, 0x301, 0x4000, 0x201, 0x3000, 0x101};
  TheRecord().regionSize = {5, 3, 4, 2, 3, 1};
  const TPropertyMap device = Device();
  EXPECT_EQ(Numbers(device.at("MEMAddress")), (std::vector<unsigned>{0x5000, 0x4000, 0x3000}));
  EXPECT_EQ(Numbers(device.at("MEMLength")), (std::vector<unsigned>{5, 4, 3}));
  EXPECT_EQ(Numbers(device.at("IOAddress")), (std::vector<unsigned>{0x300, 0x200, 0x100}));
  EXPECT_EQ(Numbers(device.at("IOLength")), (std::vector<unsigned>{3, 2, 1}));
}

TEST_F(FunctionPropertiesTest, IoAddressIsCutToSixteenBits) {
  TheRecord().baseAddress = {0x1E001, 0, 0, 0, 0, 0};
  EXPECT_EQ(Numbers(Device().at("IOAddress")), std::vector<unsigned>{0xE000});
}

TEST_F(FunctionPropertiesTest, IoLengthIsCutToSixteenBits) {
  TheRecord().baseAddress = {0xE001, 0xD001, 0, 0, 0, 0};
  TheRecord().regionSize = {0x10000, 0x10008, 0, 0, 0, 0};
  EXPECT_EQ(Numbers(Device().at("IOLength")), (std::vector<unsigned>{0, 8}));
}

TEST_F(FunctionPropertiesTest, FlagBitsAreCleared) {
  TheRecord().baseAddress = {0xFFFFFFFE, 0x0000000E, 0xFFFFFFFF, 0x3, 0, 0};
  const TPropertyMap device = Device();
  EXPECT_EQ(Numbers(device.at("MEMAddress")), (std::vector<unsigned>{0xFFFFFFF0, 0}));
  EXPECT_EQ(Numbers(device.at("IOAddress")), (std::vector<unsigned>{0xFFFC, 0}));
}

TEST_F(FunctionPropertiesTest, MemoryRegionOfSizeZeroHasAnAddressAndNoLength) {
  TheRecord().baseAddress = {0xF7E00000, 0xF7F00000, 0, 0, 0, 0};
  TheRecord().regionSize = {0, 0x1000, 0, 0, 0, 0};
  const TPropertyMap device = Device();
  EXPECT_EQ(Numbers(device.at("MEMAddress")), (std::vector<unsigned>{0xF7E00000, 0xF7F00000}));
  EXPECT_EQ(Numbers(device.at("MEMLength")), std::vector<unsigned>{0x1000});
}

TEST_F(FunctionPropertiesTest, RegionsWithoutAnySizeHaveNoLengths) {
  TheRecord().baseAddress = {0xF7E00000, 0xE001, 0, 0, 0, 0};
  const TPropertyMap device = Device();
  EXPECT_EQ(device.count("MEMAddress"), 1U);
  EXPECT_EQ(device.count("MEMLength"), 0U);
  EXPECT_EQ(device.count("IOAddress"), 1U);
  EXPECT_EQ(device.count("IOLength"), 0U);
}

TEST_F(FunctionPropertiesTest, SizeWithoutBaseAddressIsNotLookedAt) {
  TheRecord().regionSize.fill(0x1000);
  const TPropertyMap device = Device();
  for (const char* name : {"MEMAddress", "MEMLength", "IOAddress", "IOLength"}) {
    EXPECT_EQ(device.count(name), 0U) << name;
  }
}

TEST_F(FunctionPropertiesTest, IrqIsReportedUnlessItIsZero) {
  EXPECT_EQ(Device().count("IRQ"), 0U);
  TheRecord().irq = 0x1FF;
  EXPECT_EQ(Device().at("IRQ"), Word(0x1FF));
}

TEST_F(FunctionPropertiesTest, BridgeHasTheCommonPropertiesOnly) {
  TheRecord().irq = 11;
  TheRecord().baseAddress.fill(0xF7E00000);
  TheRecord().regionSize.fill(0x1000);
  const TPropertyMap bridge = Bridge();
  EXPECT_EQ(bridge.at("CreationClassName"), TCIMValue("QZMSG_PCIBridge"));
  EXPECT_EQ(Names(bridge),
            (Lines{"ClassCode", "CreationClassName", "Description", "DeviceID", "Location",
                   "PciDeviceID", "ProgrammingInterface", "Revision", "Subclass",
                   "SystemCreationClassName", "SystemName", "VendorID"}));
  EXPECT_EQ(Fake().log, Join({{kEntering, kNoSlots}, kFromListing, {kExiting}}));
}

TEST_F(FunctionPropertiesTest, RejectedBridgeIsAnEmptyMap) {
  TheRecord().configSpace[2] = 0xFF;
  EXPECT_TRUE(Bridge().empty());
}

TEST_F(FunctionPropertiesTest, ClassCodeIsTheBaseClass) {
  EXPECT_EQ(Collector().GetClassCode(records.begin()), 4);
  TheRecord().configSpace.fill(0);
  TheRecord().configSpace[0x0B] = 0xFF;
  EXPECT_EQ(Collector().GetClassCode(records.begin()), 0xFF);
}

TEST_F(FunctionPropertiesTest, WordsMakeAnArrayOfSixteenBitNumbers) {
  const TCIMValue value = Collector().GetWordCimValue({3, 0xFFFF, 0});
  EXPECT_EQ(value.GetType().GetCode(), 4);
  EXPECT_EQ(value.GetArray(), (TCIMValue::TArray{Word(3), Word(0xFFFF), Word(0)}));
}

TEST_F(FunctionPropertiesTest, DoubleWordsMakeAnArrayOfThirtyTwoBitNumbers) {
  const TCIMValue value = Collector().GetDwordCimValue({3, 0xFFFFFFFF, 0});
  EXPECT_EQ(value.GetType().GetCode(), 6);
  EXPECT_EQ(value.GetArray(),
            (TCIMValue::TArray{TCIMValue(3U), TCIMValue(0xFFFFFFFFU), TCIMValue(0U)}));
}

TEST_F(FunctionPropertiesTest, NoNumbersMakeAnArrayOfNone) {
  for (const TCIMValue& value :
       {Collector().GetWordCimValue({}), Collector().GetDwordCimValue({})}) {
    EXPECT_FALSE(value.IsNull());
    EXPECT_TRUE(value.GetArray().empty());
  }
}
