// SPDX-License-Identifier: Apache-2.0
#include <new>

#include "framework/exception.h"
#include "pci/process_state.h"
#include "plugin/class_names.h"
#include "tests/fakes/plugin_fixture.h"
#include "tests/fakes/watched_framework.h"

using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TVTQException;

namespace {

using Lines = std::vector<std::string>;
using Pairs = std::vector<std::pair<std::string, std::string>>;

constexpr int kNone = -1;

}  // namespace

class DeviceInSlotTest : public PluginTest {
 protected:
  // The tests use short names: the tag for a slot, the ID for a function.
  void PutSlot(const std::string& tag, int number) {
    TPropertyMap slot{{"CreationClassName", TCIMValue(kSystemSlotClass)}, {"Tag", TCIMValue(tag)}};
    if (number != kNone) slot.emplace("Number", TCIMValue(static_cast<unsigned short>(number)));
    Commit(kSystemSlotClass, slot);
  }

  void PutFunction(const char* className, const std::string& id, int slot,
                   unsigned short vendor = 0x8086, unsigned short device = 0x1234) {
    TPropertyMap function{{"SystemCreationClassName", TCIMValue("")},
                          {"SystemName", TCIMValue("")},
                          {"CreationClassName", TCIMValue(className)},
                          {"DeviceID", TCIMValue(id)},
                          {"VendorID", TCIMValue(vendor)},
                          {"PciDeviceID", TCIMValue(device)}};
    if (slot != kNone) function.emplace("UINumber", TCIMValue(static_cast<unsigned char>(slot)));
    Commit(className, function);
  }

  void PutDevice(const std::string& id, int slot) { PutFunction(kPciDeviceClass, id, slot); }
  void PutBridge(const std::string& id, int slot) { PutFunction(kPciBridgeClass, id, slot); }

  std::vector<TPropertyMap> Maps() {
    // The constructor with one argument keeps the retrieval type that the test has set.
    processState.slotDataLoaded = true;
    return Make<TPciDevInfo>(kDeviceInSlotClass).MakeDeviceSlotAssociation();
  }

  // Tag of the slot and ID of the function of each association.
  Pairs Associate() {
    Pairs pairs;
    for (const TPropertyMap& map : Maps()) {
      pairs.emplace_back(map.at("Antecedent").GetReference().GetKeys().at("Tag").GetString(),
                         map.at("Dependent").GetReference().GetKeys().at("DeviceID").GetString());
    }
    return pairs;
  }
};

TEST_F(DeviceInSlotTest, WithoutSlotsEachFunctionWithANumberIsReported) {
  PutDevice("a", 3);
  PutDevice("b", 0);
  PutBridge("c", 4);
  EXPECT_TRUE(Associate().empty());
  EXPECT_EQ(Fake().log, (Lines{"2 PCI Slot ID 3 not found", "2 PCI Slot ID 4 not found"}));
}

TEST_F(DeviceInSlotTest, FunctionWithNumberZeroOrNullIsLeftOutSilently) {
  PutSlot("Tag 1", 0);
  PutDevice("zero", 0);
  PutDevice("null", kNone);
  PutBridge("null", kNone);
  EXPECT_TRUE(Associate().empty());
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(DeviceInSlotTest, WithBusInformationTheNumberIsThePositionOfTheSlot) {
  processState.slotIDRetrievalType = 2;
  PutSlot("first", 2);
  PutSlot("second", 77);
  PutDevice("a", 2);
  EXPECT_EQ(Associate(), (Pairs{{"second", "a"}}));
}

TEST_F(DeviceInSlotTest, OemStringBusInformationCountsPositionsToo) {
  processState.slotIDRetrievalType = 1;
  PutSlot("first", 2);
  PutSlot("second", 77);
  PutDevice("a", 1);
  EXPECT_EQ(Associate(), (Pairs{{"first", "a"}}));
}

TEST_F(DeviceInSlotTest, WithoutBusInformationTheLowByteOfTheSlotIdCounts) {
  PutSlot("slot", 0x0103);
  PutDevice("a", 3);
  EXPECT_EQ(Associate(), (Pairs{{"slot", "a"}}));
}

TEST_F(DeviceInSlotTest, FirstOfTwoSlotsWithOneNumberTakesTheDevice) {
  PutSlot("first", 3);
  PutSlot("second", 3);
  PutDevice("a", 3);
  PutDevice("b", 3);
  EXPECT_EQ(Associate(), (Pairs{{"first", "a"}, {"first", "b"}}));
}

TEST_F(DeviceInSlotTest, SecondSlotWithANumberIsPassedOverOnTheWayToAnother) {
  PutSlot("first", 3);
  PutSlot("second", 3);
  PutSlot("third", 9);
  PutDevice("a", 9);
  PutDevice("b", 3);
  EXPECT_EQ(Associate(), (Pairs{{"third", "a"}, {"first", "b"}}));
}

TEST_F(DeviceInSlotTest, SlotWithoutANumberCountsAsZero) {
  PutSlot("none", kNone);
  PutSlot("slot", 3);
  PutDevice("a", 3);
  EXPECT_EQ(Associate(), (Pairs{{"slot", "a"}}));
}

TEST_F(DeviceInSlotTest, BridgesComeAfterDevicesAndAreAssociatedLikeThem) {
  PutSlot("slot 1", 1);
  PutSlot("slot 2", 2);
  PutBridge("bridge", 1);
  PutDevice("device", 2);
  EXPECT_EQ(Associate(), (Pairs{{"slot 2", "device"}, {"slot 1", "bridge"}}));
}

TEST_F(DeviceInSlotTest, PositionsBeyond255CountByTheirLowByte) {
  processState.slotIDRetrievalType = 2;
  for (int i = 1; i <= 300; ++i) PutSlot("slot " + std::to_string(i), 0);
  PutDevice("a", 44);  // position 300 has this low byte as well
  PutDevice("b", 255);
  EXPECT_EQ(Associate(), (Pairs{{"slot 44", "a"}, {"slot 255", "b"}}));
}

class SharedSlotTest : public DeviceInSlotTest {
 protected:
  SharedSlotTest() {
    Fake().biosId = "B2";
    for (const int number : {5, 6, 7}) PutSlot("slot " + std::to_string(number), number);
  }

  void PutPort(const std::string& id, int slot) {
    PutFunction(kPciDeviceClass, id, slot, 0x14E4, 0x1656);
  }
};

TEST_F(SharedSlotTest, PortsShareTheSlotOfTheFirst) {
  PutPort("a", 5);
  PutPort("b", 7);
  EXPECT_EQ(Associate(), (Pairs{{"slot 5", "a"}, {"slot 5", "b"}}));
}

TEST_F(SharedSlotTest, FirstNumberCountsAlsoWhereALaterOneIsSmaller) {
  PutPort("a", 7);
  PutPort("b", 5);
  PutPort("c", 6);
  EXPECT_EQ(Associate(), (Pairs{{"slot 7", "a"}, {"slot 7", "b"}, {"slot 7", "c"}}));
}

TEST_F(SharedSlotTest, PortWithoutANumberIsInTheSharedSlotOnceItIsKnown) {
  PutPort("a", kNone);
  PutPort("b", 7);
  PutPort("c", kNone);
  EXPECT_EQ(Associate(), (Pairs{{"slot 7", "b"}, {"slot 7", "c"}}));
}

TEST_F(SharedSlotTest, FirstNumberSeenStaysForTheLifeOfTheProcess) {
  PutPort("a", 5);
  Associate();
  PutPort("a", 6);
  EXPECT_EQ(Associate(), (Pairs{{"slot 5", "a"}}));
}

TEST_F(SharedSlotTest, ZeroIsNotTheSharedSlot) {
  PutPort("a", 0);
  PutPort("b", 6);
  EXPECT_EQ(Associate(), (Pairs{{"slot 6", "b"}}));
}

TEST_F(SharedSlotTest, OtherPlatformsChipsAndVendorsShareNothing) {
  PutPort("a", 5);
  PutFunction(kPciDeviceClass, "b", 6, 0x14E4, 0x1657);
  PutFunction(kPciDeviceClass, "c", 7, 0x14E5, 0x1656);
  EXPECT_EQ(Associate(), (Pairs{{"slot 5", "a"}, {"slot 6", "b"}, {"slot 7", "c"}}));
  Fake().biosId = "B2 ";
  PutPort("b", 6);
  EXPECT_EQ(Associate()[1], (std::pair<std::string, std::string>{"slot 6", "b"}));
}

TEST_F(SharedSlotTest, BridgesShareNothing) {
  PutPort("a", 5);
  PutFunction(kPciBridgeClass, "bridge", 7, 0x14E4, 0x1656);
  EXPECT_EQ(Associate(), (Pairs{{"slot 5", "a"}, {"slot 7", "bridge"}}));
}

// The calls of the association to the framework, and what happens when they fail.
class WatchedAssociationTest : public DeviceInSlotTest {
 protected:
  WatchedAssociationTest() {
    processState.slotDataLoaded = true;
    Fake().onGetBiosId = [this] { watch.operations.emplace_back("GetBiosID"); };
    PutSlot("slot", 3);
    PutDevice("device", 3);
    PutBridge("bridge", 3);
  }

  std::size_t CountAssociations() {
    const auto watched = watch.Class(kDeviceInSlotClass);
    return TPciDevInfo(watched, &provider).MakeDeviceSlotAssociation().size();
  }

  void FailAt(const std::string& failing) {
    watch.before = [failing](const std::string& operation) {
      if (operation == failing) throw TVTQException("gone");
    };
  }

  static Lines LogOfFailure(const std::string& why) {
    return {
        "2 PCI Device-slot association encountered an error\t\t\t\t\t\t\tenumerating CIM "
        "instances for QZMSG_PCIDevice OR QZMSG_SystemSlot Error Code: " +
        why};
  }

  WatchedFramework watch{nameSpace};
};

TEST_F(WatchedAssociationTest, IdentifiersOfEachDeviceAreReadInTheirOrderAndOfNoBridge) {
  PutDevice("another", 0);
  EXPECT_EQ(CountAssociations(), 2U);
  const Lines device{"QZMSG_PCIDevice GetProperty UINumber",
                     "QZMSG_PCIDevice GetProperty PciDeviceID",
                     "QZMSG_PCIDevice GetProperty VendorID",
                     "QZMSG_PCIDevice GetProperty SubsystemID", "GetBiosID"};
  Lines expected{"QZMSG_DeviceInSlot GetNamespace",     "namespace GetClass QZMSG_SystemSlot",
                 "QZMSG_SystemSlot EnumerateInstances", "namespace GetClass QZMSG_PCIDevice",
                 "QZMSG_PCIDevice EnumerateInstances",  "namespace GetClass QZMSG_PCIBridge",
                 "QZMSG_PCIBridge EnumerateInstances"};
  expected.insert(expected.end(), device.begin(), device.end());
  expected.insert(expected.end(),
                  {"QZMSG_SystemSlot GetProperty Number", "QZMSG_SystemSlot GetObjectReference",
                   "QZMSG_PCIDevice GetObjectReference"});
  expected.insert(expected.end(), device.begin(), device.end());
  expected.insert(expected.end(),
                  {"QZMSG_PCIBridge GetProperty UINumber", "QZMSG_SystemSlot GetObjectReference",
                   "QZMSG_PCIBridge GetObjectReference"});
  EXPECT_EQ(watch.operations, expected);
}

TEST_F(WatchedAssociationTest, ClassThatIsNotThereIsLoggedAndGivesNothing) {
  for (const char* name : {kSystemSlotClass, kPciDeviceClass, kPciBridgeClass}) {
    for (const std::string& operation :
         {std::string("namespace GetClass ") + name, std::string(name) + " EnumerateInstances"}) {
      Fake().log.clear();
      FailAt(operation);
      EXPECT_EQ(CountAssociations(), 0U) << operation;
      EXPECT_EQ(Fake().log, LogOfFailure("gone")) << operation;
    }
  }
}

TEST_F(WatchedAssociationTest, PropertyThatCannotBeReadEndsTheAssociation) {
  for (const char* name : {"UINumber", "PciDeviceID", "VendorID", "SubsystemID"}) {
    Fake().log.clear();
    FailAt(std::string("QZMSG_PCIDevice GetProperty ") + name);
    EXPECT_EQ(CountAssociations(), 0U) << name;
    EXPECT_EQ(Fake().log, LogOfFailure("gone")) << name;
  }
  Fake().log.clear();
  FailAt("QZMSG_PCIBridge GetProperty UINumber");
  EXPECT_EQ(CountAssociations(), 1U) << "of the device before";
  EXPECT_EQ(Fake().log, LogOfFailure("gone"));
}

TEST_F(WatchedAssociationTest, SlotNumberIsReadAlsoWhereThePositionCounts) {
  for (const unsigned type : {0U, 2U}) {
    processState.slotIDRetrievalType = type;
    Fake().log.clear();
    FailAt("QZMSG_SystemSlot GetProperty Number");
    EXPECT_EQ(CountAssociations(), 0U) << type;
    EXPECT_EQ(Fake().log, LogOfFailure("gone")) << type;
  }
}

TEST_F(WatchedAssociationTest, FirmwareThatCannotBeReadEndsTheAssociation) {
  int asked = 0;
  Fake().onGetBiosId = [&] {
    if (++asked == 2) throw TVTQException("unreadable tables");
  };
  PutDevice("another", 3);
  EXPECT_EQ(CountAssociations(), 1U) << "of the device before";
  EXPECT_EQ(Fake().log, LogOfFailure("unreadable tables"));
}

TEST_F(WatchedAssociationTest, LoggerThatFailsAtASlotThatIsNotFoundIsNoFailureToEnumerate) {
  PutDevice("lost", 9);
  int asked = 0;
  Fake().onGetCoreLogger = [&] {
    if (++asked == 1) throw TVTQException("no logger");
  };
  EXPECT_THROW(CountAssociations(), TVTQException);
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(WatchedAssociationTest, ExceptionThatIsNoneOfTheFrameworkPassesThrough) {
  Fake().onGetBiosId = [] { throw 1; };
  EXPECT_THROW(CountAssociations(), int);
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(DeviceInSlotTest, DeviceWhoseClassHasNoSubsystemEndsTheAssociation) {
  // Classes of another version of the schema.
  const auto other = vtq::Namespace::Create("root/other");
  const auto declare = [&](const char* name, std::vector<vtq::PropertySchema> properties) {
    vtq::ClassSchema schema;
    schema.name = name;
    schema.properties = std::move(properties);
    other->Declare(schema);
  };
  const TCIMValue::TCIMType text(TCIMValue::TCIMType::kString);
  const TCIMValue::TCIMType word(TCIMValue::TCIMType::kUint16);
  declare(kSystemSlotClass, {{"Tag", text, false, true, {}, ""}});
  declare(kPciBridgeClass, {{"DeviceID", text, false, true, {}, ""}});
  declare(kDeviceInSlotClass, {});
  declare(kPciDeviceClass,
          {{"DeviceID", text, false, true, {}, ""},
           {"UINumber", TCIMValue::TCIMType(TCIMValue::TCIMType::kUint8), false, false, {}, ""},
           {"PciDeviceID", word, false, false, {}, ""},
           {"VendorID", word, false, false, {}, ""}});
  const auto device = other->Find(kPciDeviceClass)->CreateInstance({});
  device->SetProperty("DeviceID", TCIMValue("a"), {});
  device->Commit({});
  processState.slotDataLoaded = true;
  TPciDevInfo collector(other->Find(kDeviceInSlotClass), &provider);
  EXPECT_TRUE(collector.MakeDeviceSlotAssociation().empty());
  ASSERT_EQ(Fake().log.size(), 1U);
  EXPECT_NE(Fake().log[0].find("SubsystemID"), std::string::npos) << Fake().log[0];
}

TEST_F(DeviceInSlotTest, FailureToEnumerateIsLoggedAndGivesNothing) {
  const auto faulty = std::make_shared<FaultyClass>(Class(kDeviceInSlotClass));
  faulty->onGetNamespace = [] { throw TVTQException("gone"); };
  processState.slotDataLoaded = true;
  EXPECT_TRUE(TPciDevInfo(faulty, &provider).MakeDeviceSlotAssociation().empty());
  EXPECT_EQ(Fake().log,
            Lines{"2 PCI Device-slot association encountered an error\t\t\t\t\t\t\tenumerating CIM "
                  "instances for QZMSG_PCIDevice OR QZMSG_SystemSlot Error Code: gone"});
}

TEST_F(DeviceInSlotTest, FailureWhileMatchingKeepsTheAssociationsMadeSoFar) {
  PutSlot("slot", 3);
  PutDevice("a", 3);
  // A device without a vendor cannot be examined.
  Commit(kPciDeviceClass, {{"SystemCreationClassName", TCIMValue("")},
                           {"SystemName", TCIMValue("")},
                           {"CreationClassName", TCIMValue(kPciDeviceClass)},
                           {"DeviceID", TCIMValue("broken")}});
  PutBridge("never reached", 3);
  EXPECT_EQ(Associate(), (Pairs{{"slot", "a"}}));
  ASSERT_EQ(Fake().log.size(), 1U);
  EXPECT_EQ(Fake().log[0].rfind("2 PCI Device-slot association encountered an error", 0), 0U);
}

TEST_F(DeviceInSlotTest, OtherExceptionsPassThrough) {
  const auto faulty = std::make_shared<FaultyClass>(Class(kDeviceInSlotClass));
  faulty->onGetNamespace = [] { throw std::bad_alloc(); };
  processState.slotDataLoaded = true;
  EXPECT_THROW(TPciDevInfo(faulty, &provider).MakeDeviceSlotAssociation(), std::bad_alloc);
}

TEST_F(DeviceInSlotTest, MapsBecomeInstances) {
  processState.slotDataLoaded = true;
  PutSlot("slot", 3);
  PutDevice("a", 3);
  EXPECT_EQ(Make<TPciDevInfo>(kDeviceInSlotClass).TPci::GetCIMInstances().size(), 1U);
  EXPECT_EQ(Instances(kDeviceInSlotClass).size(), 1U);
}
