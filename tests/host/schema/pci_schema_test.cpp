// SPDX-License-Identifier: Apache-2.0
#include "tests/fakes/pci_schema.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace pciinfo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

vtq::ClassSchema ClassNamed(const std::string& name) {
  for (const vtq::ClassSchema& schema : PciSchema()) {
    if (schema.name == name) return schema;
  }
  ADD_FAILURE() << "no class " << name;
  return {};
}

/// Every property as "name type", arrays with "[]", keys with "*" in front.
std::vector<std::string> Shapes(const std::string& className) {
  std::vector<std::string> shapes;
  for (const vtq::PropertySchema& property : ClassNamed(className).properties) {
    shapes.push_back((property.isKey ? "*" : "") + property.name + " " + property.type.GetName() +
                     (property.isArray ? "[]" : ""));
  }
  return shapes;
}

TEST(PciSchema, ClassesHaveTheirSuperclasses) {
  std::vector<std::string> names;
  for (const vtq::ClassSchema& schema : PciSchema()) {
    names.push_back(schema.name + " " + schema.superclass);
  }
  EXPECT_THAT(names, ElementsAre("QZMSG_PCIDevice CIM_PCIDevice", "QZMSG_PCIBridge CIM_PCIBridge",
                                 "QZMSG_SystemSlot CIM_Slot", "QZMSG_SystemBoard CIM_LogicalDevice",
                                 "QZMSG_DeviceInSlot CIM_Realizes",
                                 "QZMSG_OnBoardDevice CIM_Dependency", "QZMSG_PCIRawData "));
}

TEST(PciSchema, DeviceProperties) {
  EXPECT_THAT(Shapes("QZMSG_PCIDevice"),
              ElementsAre("*SystemCreationClassName string", "*SystemName string",
                          "*CreationClassName string", "*DeviceID string", "VendorID uint16",
                          "PciDeviceID uint16", "UINumber uint8", "ClassCode uint8",
                          "Subclass uint8", "ProgrammingInterface uint8", "Revision uint8",
                          "Description string", "Location string", "SubsystemVendorID uint16",
                          "SubsystemID uint16", "MEMAddress uint32[]", "MEMLength uint32[]",
                          "IOAddress uint16[]", "IOLength uint16[]", "IRQ uint16"));
}

TEST(PciSchema, BridgesHaveThePropertiesThatDevicesShare) {
  const std::vector<std::string> device = Shapes("QZMSG_PCIDevice");
  EXPECT_EQ(Shapes("QZMSG_PCIBridge"),
            std::vector<std::string>(device.begin(), device.begin() + 13));
}

TEST(PciSchema, SlotProperties) {
  EXPECT_THAT(Shapes("QZMSG_SystemSlot"),
              ElementsAre("*CreationClassName string", "*Tag string", "Number uint16",
                          "Description string", "CurrentUsage uint16", "SlotLength uint8",
                          "OperationalStatus uint16[]", "StatusDescriptions string[]",
                          "ConnectorType uint16[]", "MaxDataWidth uint16", "PMESignal boolean",
                          "Shared boolean", "SlotDesignation string", "SlotAllInfo string",
                          "SupportsHotPlug boolean", "VccMixedVoltageSupport uint16[]"));
}

TEST(PciSchema, BoardAndRawDataProperties) {
  EXPECT_THAT(Shapes("QZMSG_SystemBoard"),
              ElementsAre("*SystemCreationClassName string", "*SystemName string",
                          "*CreationClassName string", "*DeviceID string", "ElementName string",
                          "SlotDesignation string", "SlotAllInfo string"));
  EXPECT_THAT(Shapes("QZMSG_PCIRawData"), ElementsAre("*Command string", "RawResult string[]"));
}

TEST(PciSchema, AssociationsNameWhatTheyJoin) {
  for (const char* name : {"QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice"}) {
    EXPECT_THAT(Shapes(name), ElementsAre("*Antecedent reference", "*Dependent reference"));
  }
  EXPECT_THAT(vtq::JoinedClasses(ClassNamed("QZMSG_DeviceInSlot")),
              ElementsAre("QZMSG_SystemSlot", "QZMSG_PCIDevice", "QZMSG_PCIBridge"));
  EXPECT_THAT(vtq::JoinedClasses(ClassNamed("QZMSG_OnBoardDevice")),
              ElementsAre("QZMSG_SystemBoard", "QZMSG_PCIDevice", "QZMSG_PCIBridge"));
  EXPECT_THAT(vtq::JoinedClasses(ClassNamed("QZMSG_PCIDevice")), IsEmpty());
}

vtq::PropertySchema PropertyNamed(const std::string& className, const std::string& name) {
  for (const vtq::PropertySchema& property : ClassNamed(className).properties) {
    if (property.name == name) return property;
  }
  ADD_FAILURE() << "no property " << name;
  return ClassNamed(className).properties.front();
}

/// "value meaning" of a coded property of slots.
std::vector<std::string> Values(const std::string& name) {
  std::vector<std::string> values;
  for (const vtq::NamedValue& value : PropertyNamed("QZMSG_SystemSlot", name).values) {
    values.push_back(std::to_string(value.value) + " " + value.meaning);
  }
  return values;
}

TEST(PciSchema, CodedPropertiesNameTheirValues) {
  EXPECT_THAT(Values("CurrentUsage"), ElementsAre("0 Reserved", "1 Other", "2 Unknown",
                                                  "3 Available", "4 In use", "5 Unavailable"));
  EXPECT_THAT(Values("VccMixedVoltageSupport"),
              ElementsAre("0 Unknown", "1 Other", "2 3.3V", "3 5V"));
  EXPECT_EQ(Values("OperationalStatus").size(), 20U);
  EXPECT_EQ(Values("OperationalStatus").back(), "19 Relocating");
  EXPECT_THAT(Values("ConnectorType"), testing::Contains("182 PCI Express 3 x16"));
  EXPECT_THAT(Values("MaxDataWidth"), testing::Contains("13 x16"));
  EXPECT_THAT(Values("SlotLength"), testing::Contains("4 Long length"));
  EXPECT_THAT(Values("Number"), IsEmpty());
}

TEST(PciSchema, NamedValuesAreInAscendingOrder) {
  for (const vtq::ClassSchema& schema : PciSchema()) {
    for (const vtq::PropertySchema& property : schema.properties) {
      EXPECT_TRUE(std::is_sorted(
          property.values.begin(), property.values.end(),
          [](const auto& left, const auto& right) { return left.value <= right.value; }))
          << property.name;
    }
  }
}

TEST(PciSchema, RedefinedPropertiesHaveTheOverrideQualifier) {
  EXPECT_EQ(PropertyNamed("QZMSG_PCIDevice", "PciDeviceID").overrides, "PCIDeviceID");
  EXPECT_EQ(PropertyNamed("QZMSG_PCIDevice", "VendorID").overrides, "");
  const vtq::PropertySchema dependent = PropertyNamed("QZMSG_DeviceInSlot", "Dependent");
  EXPECT_EQ(dependent.overrides, "Dependent");
  EXPECT_EQ(dependent.commonTarget, "CIM_LogicalDevice");
}

TEST(PciSchema, DescriptionsAreOneLineAndNamesAreUnique) {
  for (const vtq::ClassSchema& schema : PciSchema()) {
    EXPECT_FALSE(schema.description.empty()) << schema.name;
    std::set<std::string> names;
    for (const vtq::PropertySchema& property : schema.properties) {
      EXPECT_FALSE(property.description.empty()) << schema.name << "." << property.name;
      EXPECT_EQ(property.description.find('\n'), std::string::npos);
      EXPECT_TRUE(names.insert(property.name).second) << schema.name << "." << property.name;
    }
  }
}

}  // namespace
}  // namespace pciinfo
