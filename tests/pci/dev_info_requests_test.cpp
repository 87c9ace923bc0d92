// SPDX-License-Identifier: Apache-2.0
#include <new>
#include <stdexcept>

#include "framework/exception.h"
#include "tests/fakes/slot_record.h"
#include "tests/pci/pci_fixture.h"

using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TVTQException;

namespace {

Lines RawDataLines(const std::string& command) {
  return {"3 Entering TPciDevInfo::GetPciRawData, cmd:" + command,
          "3 Exiting TPciDevInfo::GetPciRawData", Generating(kPciRawDataClass)};
}

FakeFunction Bridge() {
  FakeFunction bridge;
  bridge.baseClass = 0x06;
  return bridge;
}

FakeFunction Device(unsigned device) {
  FakeFunction function;
  function.device = device;
  return function;
}

}  // namespace

// A process in which no collector has been created yet.
class RequestsTest : public PluginTest {
 protected:
  std::size_t Ask(const char* className) {
    return Make<TPciDevInfo>(className).GetCIMInstances().size();
  }
  std::size_t CountLines(const std::string& record) const {
    return static_cast<std::size_t>(std::count(Fake().log.begin(), Fake().log.end(), record));
  }
  // No bus information from the firmware, an empty listing, and no /proc/pci.
  void NoHelp() {
    Fake().smBios.loadStatus = 2;
    Fake().commands["lspci"] = [] { return std::string("nothing\n"); };
    MachineTree::Write("/proc/pci", "nothing\n");
  }
};

TEST_F(RequestsTest, DestroyedCollectorLeavesTheCacheAlone) {
  NoHelp();
  PutFunctions({Bridge(), Device(1)});
  { EXPECT_EQ(Make<TPciDevInfo>(kPciDeviceClass).GetCIMInstances().size(), 1U); }
  EXPECT_EQ(processState.pciBridgePropsVect.size(), 1U);
  EXPECT_EQ(processState.pciDevicePropsVect.size(), 1U);
}

TEST_F(RequestsTest, UnknownClassNamesGiveNothingAndLogNothing) {
  Fake().smBios.loadStatus = 2;
  auto collector = Make<TPciDevInfo>(kPciDeviceClass);
  Fake().log.clear();
  for (const char* name : {"QZMSG_PCIDEVICE", "qzmsg_PCIBridge", "QZMSG_PCIDevices", "QZMSG_PCI",
                           "", "QZMSG_SystemSlot", " QZMSG_PCIRawData"}) {
    EXPECT_TRUE(collector.GetCIMInstances(name).empty()) << name;
  }
  EXPECT_TRUE(Fake().log.empty());
  EXPECT_FALSE(processState.pciInfoCollected);
}

TEST_F(RequestsTest, BridgeRequestFillsBothListsAndDeviceRequestDoesNotScanAgain) {
  NoHelp();
  PutFunctions({Bridge(), Device(1), Device(2)});
  EXPECT_EQ(Ask(kPciBridgeClass), 1U);
  EXPECT_TRUE(processState.pciInfoCollected);
  EXPECT_EQ(processState.pciBridgePropsVect.size(), 1U);
  EXPECT_EQ(processState.pciDevicePropsVect.size(), 2U);
  EXPECT_TRUE(Instances(kPciDeviceClass).empty()) << "collected, and not made into instances";

  PutFunctions({Bridge(), Device(1), Device(2), Device(3)});
  Fake().log.clear();
  EXPECT_EQ(Ask(kPciDeviceClass), 2U);
  EXPECT_EQ(Fake().log, (Lines{Generating(kPciDeviceClass), Generating(kPciDeviceClass)}));
}

TEST_F(RequestsTest, DeviceRequestFillsBothListsToo) {
  NoHelp();
  PutFunctions({Bridge(), Device(1)});
  EXPECT_EQ(Ask(kPciDeviceClass), 1U);
  MachineTree::Clear();
  EXPECT_EQ(Ask(kPciBridgeClass), 1U);
  EXPECT_EQ(Ask(kPciDeviceClass), 1U) << "the maps serve every request";
  EXPECT_EQ(CountLines(Entering("GetPciInfo")), 1U);
}

TEST_F(RequestsTest, BridgeRequestOnAMachineWithoutBridgesStillCollects) {
  NoHelp();
  PutFunctions({Device(1)});
  EXPECT_EQ(Ask(kPciBridgeClass), 0U);
  EXPECT_TRUE(processState.pciInfoCollected);
  EXPECT_EQ(Ask(kPciDeviceClass), 1U);
  EXPECT_EQ(CountLines(Entering("GetPciInfo")), 1U);
}

TEST_F(RequestsTest, MachineWithoutFunctionsIsNotScannedAgain) {
  NoHelp();
  EXPECT_EQ(Ask(kPciDeviceClass), 0U);
  PutFunctions({Device(1)});
  EXPECT_EQ(Ask(kPciDeviceClass), 0U);
}

TEST_F(RequestsTest, FailedPassIsTriedAgainByTheNextRequest) {
  NoHelp();
  PutFunctions({Device(1)});
  Fake().commands["lspci"] = []() -> std::string { throw std::bad_alloc(); };
  EXPECT_THROW(Ask(kPciDeviceClass), std::bad_alloc);
  EXPECT_FALSE(processState.pciInfoCollected);
  EXPECT_EQ(Ask(kPciDeviceClass), 1U);
  EXPECT_TRUE(processState.pciInfoCollected);
  EXPECT_EQ(CountLines(Entering("GetPciInfo")), 2U);
}

TEST_F(RequestsTest, WhatAFailedPassHadCollectedStays) {
  NoHelp();
  PutFunctions({Device(1), Device(2)});
  const auto faulty = std::make_shared<FaultyClass>(Class(kPciDeviceClass));
  int asked = 0;
  faulty->onGetNamespace = [&] {
    if (++asked == 2) throw std::runtime_error("broken");
  };
  TPciDevInfo collector(faulty, &provider);
  EXPECT_THROW(collector.GetCIMInstances(), std::runtime_error);
  EXPECT_EQ(processState.pciDevicePropsVect.size(), 1U);
  EXPECT_EQ(collector.GetCIMInstances().size(), 3U);
  EXPECT_EQ(Instances(kPciDeviceClass).size(), 2U) << "the same function twice is one instance";
}

TEST_F(RequestsTest, RefusedInstanceOfTheCacheIsLoggedOnceAndTheOthersAreServed) {
  NoHelp();
  PutFunctions({Device(1), Device(2), Device(3)});
  const auto faulty = std::make_shared<FaultyClass>(Class(kPciDeviceClass));
  faulty->onCreate = [](int count) {
    if (count == 2) throw TVTQException("full");
  };
  EXPECT_EQ(TPciDevInfo(faulty, &provider).GetCIMInstances().size(), 2U);
  EXPECT_EQ(Fake().LogOf(2), Lines{Refused(kPciDeviceClass, "full").substr(2)});
}

TEST_F(RequestsTest, RawDataIsTheHexadecimalListingAndThenTheVerboseOne) {
  Fake().smBios.loadStatus = 2;
  auto collector = Make<TPciDevInfo>(kPciRawDataClass);
  Fake().log.clear();
  Fake().commands["lspci -xxxx"] = [] { return std::string("hex\n"); };
  Fake().commands["lspci -vvv"] = [] { return std::string("verbose\n\n"); };
  EXPECT_EQ(collector.GetCIMInstances().size(), 2U);
  const auto& instances = Instances(kPciRawDataClass);
  ASSERT_EQ(instances.size(), 2U);
  EXPECT_EQ(Text(*instances[0], "Command"), "lspci -xxxx");
  EXPECT_EQ(Texts(instances[0]->GetProperty("RawResult", {}).value), Lines{"hex"});
  EXPECT_EQ(Text(*instances[1], "Command"), "lspci -vvv");
  EXPECT_EQ(Texts(instances[1]->GetProperty("RawResult", {}).value), (Lines{"verbose", ""}));
  EXPECT_EQ(Fake().log, Join({RawDataLines("lspci -xxxx"), RawDataLines("lspci -vvv")}));
}

TEST_F(RequestsTest, RawDataKeepsItsOrderWhenOneListingPrintsNothing) {
  Fake().commands["lspci -xxxx"] = [] { return std::string(); };
  Fake().commands["lspci -vvv"] = [] { return std::string("verbose\n"); };
  EXPECT_EQ(Ask(kPciRawDataClass), 2U);
  const auto& instances = Instances(kPciRawDataClass);
  ASSERT_EQ(instances.size(), 2U);
  EXPECT_EQ(Text(*instances[0], "Command"), "lspci -xxxx");
  EXPECT_TRUE(instances[0]->GetProperty("RawResult", {}).value.IsNull());
  EXPECT_EQ(Text(*instances[1], "Command"), "lspci -vvv");
}

TEST_F(RequestsTest, VerboseListingIsServedWhenTheHexadecimalOneIsRefused) {
  Fake().commands["lspci -xxxx"] =
      Fake().commands["lspci -vvv"] = [] { return std::string("x\n"); };
  const auto faulty = std::make_shared<FaultyClass>(Class(kPciRawDataClass));
  faulty->onCreate = [](int count) {
    if (count == 1) throw TVTQException("full");
  };
  EXPECT_EQ(TPciDevInfo(faulty, &provider).GetCIMInstances().size(), 1U);
  EXPECT_EQ(Text(*Instances(kPciRawDataClass)[0], "Command"), "lspci -vvv");
  EXPECT_EQ(Fake().LogOf(2), Lines{Refused(kPciRawDataClass, "full").substr(2)});
}

TEST_F(RequestsTest, FailingListingEndsTheCollectionOfRawData) {
  EXPECT_THROW(Ask(kPciRawDataClass), TVTQException);
  EXPECT_EQ(Fake().spawned.size(), 1U);
  Fake().commands["lspci -xxxx"] = [] { return std::string("hex\n"); };
  EXPECT_THROW(Ask(kPciRawDataClass), TVTQException);
  EXPECT_EQ(Instances(kPciRawDataClass).size(), 1U) << "made before the verbose listing failed";
}

TEST_F(RequestsTest, RawDataIsTakenAgainByEachRequestAndCollectsNoFunctions) {
  PutFunctions({Device(1)});
  Fake().commands["lspci -xxxx"] =
      Fake().commands["lspci -vvv"] = [] { return std::string("x\n"); };
  Ask(kPciRawDataClass);
  Ask(kPciRawDataClass);
  EXPECT_EQ(Fake().spawned.size(), 4U);
  EXPECT_FALSE(processState.pciInfoCollected);
}

TEST_F(RequestsTest, AssociationsAreMadeAgainByEachRequestAndCollectNoFunctions) {
  // With bus information in the slots, the "UINumber" of a function is the position of its slot.
  Fake().smBios.structures = {SlotRecord().Bytes()};
  PutFunctions({Device(1)});
  EXPECT_EQ(Ask(kDeviceInSlotClass), 0U);
  EXPECT_FALSE(processState.pciInfoCollected);
  Commit(kSystemSlotClass, {{"CreationClassName", TCIMValue(kSystemSlotClass)},
                            {"Tag", TCIMValue("Tag 1")},
                            {"Number", TCIMValue(static_cast<unsigned short>(1))}});
  TPropertyMap inSlot = MapOf("a");
  inSlot.emplace("VendorID", TCIMValue(static_cast<unsigned short>(0x8086)));
  inSlot.emplace("PciDeviceID", TCIMValue(static_cast<unsigned short>(0x1234)));
  inSlot.emplace("UINumber", TCIMValue(static_cast<unsigned char>(1)));
  Commit(kPciDeviceClass, inSlot);
  EXPECT_EQ(Ask(kDeviceInSlotClass), 1U);
  EXPECT_EQ(Instances(kDeviceInSlotClass).size(), 1U);
  EXPECT_FALSE(processState.pciInfoCollected);
}
