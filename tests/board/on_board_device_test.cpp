// SPDX-License-Identifier: Apache-2.0
#include <new>
#include <stdexcept>

#include "board/system_board.h"
#include "framework/exception.h"
#include "plugin/class_names.h"
#include "tests/fakes/plugin_fixture.h"
#include "tests/fakes/watched_framework.h"

using NQZMVTQ20::TCIMReference;
using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TVTQException;

class OnBoardDeviceTest : public PluginTest {
 protected:
  std::string Put(const char* className, const std::string& id, int slot = -1) {
    TPropertyMap properties{{"SystemCreationClassName", TCIMValue("")},
                            {"SystemName", TCIMValue("")},
                            {"CreationClassName", TCIMValue(className)},
                            {"DeviceID", TCIMValue(id)}};
    if (slot >= 0) properties.emplace("UINumber", TCIMValue(static_cast<unsigned char>(slot)));
    return Commit(className, properties)->GetObjectReference({}).ToString();
  }

  std::vector<TPropertyMap> Associate() {
    return Make<TSysBrd>(kOnBoardDeviceClass).MakeDeviceBoardAssociation();
  }

  static std::vector<std::string> Ends(const std::vector<TPropertyMap>& maps,
                                       const std::string& end) {
    std::vector<std::string> paths;
    for (const TPropertyMap& map : maps) paths.push_back(map.at(end).GetReference().ToString());
    return paths;
  }
};

using Paths = std::vector<std::string>;

TEST_F(OnBoardDeviceTest, FunctionsWithSlotNumberZeroAreOnTheBoardDevicesFirst) {
  const std::string board = Put(kSystemBoardClass, "board");
  const std::string bridge = Put(kPciBridgeClass, "bridge", 0);
  const std::string first = Put(kPciDeviceClass, "first", 0);
  Put(kPciDeviceClass, "second", 2);
  const std::string third = Put(kPciDeviceClass, "third", 0);
  const auto maps = Associate();
  EXPECT_EQ(Ends(maps, "Dependent"), (Paths{first, third, bridge}));
  EXPECT_EQ(Ends(maps, "Antecedent"), (Paths{board, board, board}));
  EXPECT_EQ(maps[0].size(), 2U);
}

TEST_F(OnBoardDeviceTest, FunctionWithoutReadableSlotNumberIsOnTheBoard) {
  Put(kSystemBoardClass, "board");
  const std::string device = Put(kPciDeviceClass, "device");
  EXPECT_EQ(Ends(Associate(), "Dependent"), Paths{device});
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(OnBoardDeviceTest, FunctionWhoseClassHasNoSlotNumberIsOnTheBoard) {
  // A class of another version of the schema, without "UINumber".
  const auto other = vtq::Namespace::Create("root/other");
  for (const char* name :
       {kSystemBoardClass, kPciDeviceClass, kPciBridgeClass, kOnBoardDeviceClass}) {
    vtq::ClassSchema schema;
    schema.name = name;
    schema.properties.push_back(
        {"DeviceID", TCIMValue::TCIMType(TCIMValue::TCIMType::kString), false, true, {}, ""});
    other->Declare(schema);
  }
  for (const char* name : {kSystemBoardClass, kPciDeviceClass}) {
    const auto instance = other->Find(name)->CreateInstance({});
    instance->SetProperty("DeviceID", TCIMValue("x"), {});
    instance->Commit({});
  }
  TSysBrd collector(other->Find(kOnBoardDeviceClass), &provider);
  EXPECT_EQ(collector.MakeDeviceBoardAssociation().size(), 1U);
}

TEST_F(OnBoardDeviceTest, NoFunctionsGiveNoAssociationsAndNoError) {
  Put(kSystemBoardClass, "board");
  EXPECT_TRUE(Associate().empty());
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(OnBoardDeviceTest, OnlyTheFirstOfTwoBoardsIsNamed) {
  const std::string first = Put(kSystemBoardClass, "z first");
  Put(kSystemBoardClass, "a second");
  Put(kPciDeviceClass, "device");
  EXPECT_EQ(Ends(Associate(), "Antecedent"), Paths{first});
}

TEST_F(OnBoardDeviceTest, WithoutABoardThereAreNoAssociations) {
  Put(kPciDeviceClass, "device");
  EXPECT_TRUE(Associate().empty());
}

TEST_F(OnBoardDeviceTest, FailureToEnumerateIsLoggedAndGivesNothing) {
  const auto faulty = std::make_shared<FaultyClass>(Class(kOnBoardDeviceClass));
  faulty->onGetNamespace = [] { throw TVTQException("gone"); };
  EXPECT_TRUE(TSysBrd(faulty, &provider).MakeDeviceBoardAssociation().empty());
  EXPECT_EQ(Fake().LogOf(2),
            (std::vector<std::string>{
                "PCI Device-slot association encountered an error\t\t\t\t\t\t\tenumerating CIM "
                "instances for QZMSG_SystemBoard OR QZMSG_PCIDevice Error Code: gone"}));
}

// The calls of the association to the framework, and what happens when they fail.
class WatchedBoardTest : public OnBoardDeviceTest {
 protected:
  WatchedBoardTest() {
    Put(kSystemBoardClass, "board");
    Put(kPciDeviceClass, "device", 2);
    Put(kPciBridgeClass, "bridge", 0);
  }

  std::size_t CountAssociations() {
    const auto watched = watch.Class(kOnBoardDeviceClass);
    return TSysBrd(watched, &provider).MakeDeviceBoardAssociation().size();
  }

  WatchedFramework watch{nameSpace};
};

TEST_F(WatchedBoardTest, ClassesAreLookedUpInTheirOrderAndEachFunctionIsReadOnce) {
  EXPECT_EQ(CountAssociations(), 1U);
  EXPECT_EQ(watch.operations,
            (Paths{"QZMSG_OnBoardDevice GetNamespace", "namespace GetClass QZMSG_SystemBoard",
                   "QZMSG_SystemBoard EnumerateInstances", "namespace GetClass QZMSG_PCIDevice",
                   "QZMSG_PCIDevice EnumerateInstances", "namespace GetClass QZMSG_PCIBridge",
                   "QZMSG_PCIBridge EnumerateInstances", "QZMSG_PCIDevice GetProperty UINumber",
                   "QZMSG_PCIBridge GetProperty UINumber", "QZMSG_SystemBoard GetObjectReference",
                   "QZMSG_PCIBridge GetObjectReference"}));
}

TEST_F(WatchedBoardTest, ClassThatIsNotThereIsLoggedAndGivesNothing) {
  for (const char* name : {kSystemBoardClass, kPciDeviceClass, kPciBridgeClass}) {
    for (const std::string& failing :
         {std::string("namespace GetClass ") + name, std::string(name) + " EnumerateInstances"}) {
      Fake().log.clear();
      watch.before = [&](const std::string& operation) {
        if (operation == failing) throw TVTQException("gone");
      };
      EXPECT_EQ(CountAssociations(), 0U) << failing;
      EXPECT_EQ(Fake().log,
                Paths{"2 PCI Device-slot association encountered an error\t\t\t\t\t\t\t"
                      "enumerating CIM instances for QZMSG_SystemBoard OR QZMSG_PCIDevice Error "
                      "Code: gone"})
          << failing;
    }
  }
}

TEST_F(WatchedBoardTest, FunctionIsOnTheBoardWhateverIsThrownWhenItsNumberIsRead) {
  const std::vector<std::function<void()>> failures{
      [] { throw TVTQException("gone"); }, [] { throw std::bad_alloc(); }, [] { throw 1; }};
  for (const auto& fail : failures) {
    watch.before = [&](const std::string& operation) {
      if (operation == "QZMSG_PCIDevice GetProperty UINumber") fail();
    };
    EXPECT_EQ(CountAssociations(), 2U);
  }
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(WatchedBoardTest, FailureToTakeAReferencePassesThrough) {
  watch.before = [](const std::string& operation) {
    if (operation == "QZMSG_PCIBridge GetObjectReference") throw TVTQException("gone");
  };
  EXPECT_THROW(CountAssociations(), TVTQException);
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(OnBoardDeviceTest, OtherExceptionsPassThrough) {
  const auto faulty = std::make_shared<FaultyClass>(Class(kOnBoardDeviceClass));
  faulty->onGetNamespace = [] { throw std::runtime_error("broken"); };
  EXPECT_THROW(TSysBrd(faulty, &provider).MakeDeviceBoardAssociation(), std::runtime_error);
}

TEST_F(OnBoardDeviceTest, MapsBecomeInstances) {
  Put(kSystemBoardClass, "board");
  const std::string device = Put(kPciDeviceClass, "device");
  EXPECT_EQ(Make<TSysBrd>(kOnBoardDeviceClass).TPci::GetCIMInstances().size(), 1U);
  ASSERT_EQ(Instances(kOnBoardDeviceClass).size(), 1U);
  EXPECT_EQ(Text(*Instances(kOnBoardDeviceClass)[0], "Dependent"), device);
}
