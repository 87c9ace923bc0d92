// SPDX-License-Identifier: Apache-2.0
#include "host/instance_diff/instance_diff.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/schema/class_file.h"
#include "tests/host/fixed_repository.h"
#include "tests/host/plugins/fixed_topology.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// A machine that a test assembles.
class Machine {
 public:
  explicit Machine(std::string system = "box") : system_(std::move(system)) {}

  std::shared_ptr<vtq::Instance> AddSlot(const std::string& tag, const std::string& designation,
                                         unsigned short id = 1, unsigned short usage = 4) {
    const auto slot = Make("QZMSG_SystemSlot");
    Set(*slot, "CreationClassName", TCIMValue("QZMSG_SystemSlot"));
    Set(*slot, "Tag", TCIMValue(tag));
    Set(*slot, "SlotDesignation", TCIMValue(designation));
    Set(*slot, "Number", TCIMValue(id));
    Set(*slot, "CurrentUsage", TCIMValue(usage));
    slot->Commit({});
    return slot;
  }

  std::shared_ptr<vtq::Instance> AddFunction(int bus, int device, unsigned short deviceId,
                                             const std::shared_ptr<vtq::Instance>& slot = nullptr,
                                             unsigned char revision = 1) {
    const auto function = Make("QZMSG_PCIDevice");
    const std::string location =
        "PCI Bus " + std::to_string(bus) + ", device " + std::to_string(device) + ", function 0";
    Set(*function, "SystemCreationClassName", TCIMValue("CIM_ComputerSystem"));
    Set(*function, "SystemName", TCIMValue(system_));
    Set(*function, "CreationClassName", TCIMValue("QZMSG_PCIDevice"));
    Set(*function, "DeviceID", TCIMValue(location));
    Set(*function, "Location", TCIMValue(location));
    Set(*function, "VendorID", TCIMValue(static_cast<unsigned short>(0x8086)));
    Set(*function, "PciDeviceID", TCIMValue(deviceId));
    Set(*function, "Revision", TCIMValue(revision));
    function->Commit({});
    if (slot != nullptr) Join(*slot, *function);
    return function;
  }

  void AddListing(const std::vector<std::string>& lines) {
    const auto listing = Make("QZMSG_PCIRawData");
    TCIMValue::TArray elements;
    for (const std::string& line : lines) elements.emplace_back(line);
    Set(*listing, "Command", TCIMValue("lspci -vvv"));
    const auto count = static_cast<std::uint32_t>(elements.size());
    Set(*listing, "RawResult",
        TCIMValue(TCIMValue::TCIMType(TCIMValue::TCIMType::kString), count, std::move(elements)));
    listing->Commit({});
  }

  const vtq::Namespace& Get() const { return *repository_; }

 private:
  std::shared_ptr<vtq::Instance> Make(const char* className) {
    return std::make_shared<vtq::Instance>(repository_->Find(className));
  }
  static void Set(vtq::Instance& instance, const char* name, const TCIMValue& value) {
    instance.SetProperty(name, value, {});
  }
  void Join(const vtq::Instance& slot, const vtq::Instance& function) {
    const auto association = Make("QZMSG_DeviceInSlot");
    Set(*association, "Antecedent", TCIMValue(slot.GetObjectReference({})));
    Set(*association, "Dependent", TCIMValue(function.GetObjectReference({})));
    association->Commit({});
  }

  std::string system_;
  std::shared_ptr<vtq::Namespace> repository_ = MakeEmptyRepository();
};

std::vector<std::string> Texts(const Machine& before, const Machine& after,
                               const std::set<std::string>& ignored = {}) {
  std::vector<std::string> texts;
  for (const InstanceChange& change :
       CompareInstances({&before.Get(), true}, {&after.Get(), true}, ignored).changes) {
    texts.push_back(change.label.substr(0, change.label.find("  ")) + ": " + change.text);
  }
  return texts;
}

TEST(InstanceDiff, TheSameMachineDoesNotDiffer) {
  const auto before = MakeFixedRepository();
  const auto after = MakeFixedRepository();
  const InstanceDiff result = CompareInstances({before.get(), true}, {after.get(), true}, {});
  EXPECT_THAT(result.changes, IsEmpty());
  EXPECT_TRUE(result.hasCompared);
}

TEST(InstanceDiff, FunctionsAreAddedAndRemoved) {
  Machine before, after;
  before.AddFunction(1, 0, 0xA);
  after.AddFunction(2, 0, 0xB, after.AddSlot("Tag 1", "X"));
  before.AddSlot("Tag 1", "X");
  EXPECT_THAT(Texts(before, after, {"Functions"}),
              ElementsAre("01:00.0: removed", "02:00.0: added (slot X (Tag 1))"));
}

TEST(InstanceDiff, ACardThatMovedIsTheSameCard) {
  Machine before, after;
  const auto oldSlot = before.AddSlot("Tag 1", "X", 1);
  before.AddSlot("Tag 2", "Y", 2);
  before.AddFunction(1, 0, 0xA, oldSlot);
  after.AddSlot("Tag 1", "X", 1);
  after.AddFunction(2, 0, 0xA, after.AddSlot("Tag 2", "Y", 2));
  EXPECT_THAT(Texts(before, after),
              ElementsAre("X (Tag 1): now empty (was 01:00.0)", "Y (Tag 2): now holds 02:00.0",
                          "02:00.0: card moved from slot X (Tag 1) to slot Y (Tag 2)",
                          "02:00.0: address 01:00.0 -> 02:00.0"));
}

TEST(InstanceDiff, ACardOnARenumberedBusIsTheSameCard) {
  Machine before, after;
  for (int device = 0; device < 4; ++device) {
    before.AddFunction(3, device, static_cast<unsigned short>(device));
    after.AddFunction(4, device, static_cast<unsigned short>(device));
  }
  after.AddFunction(3, 0, 0x99);
  EXPECT_THAT(Texts(before, after, {"Location"}), ElementsAre("03:00.0: added"));
  EXPECT_THAT(Texts(before, after), Contains("04:02.0: address 03:02.0 -> 04:02.0"));
}

TEST(InstanceDiff, EqualCardsArePairedByTheirSlots) {
  Machine before, after;
  before.AddFunction(3, 0, 0xA, before.AddSlot("Tag 1", "X", 1));
  before.AddFunction(4, 0, 0xA, before.AddSlot("Tag 2", "Y", 2));
  after.AddFunction(4, 0, 0xA, after.AddSlot("Tag 1", "X", 1));
  after.AddFunction(5, 0, 0xA, after.AddSlot("Tag 2", "Y", 2));
  EXPECT_THAT(Texts(before, after), ElementsAre("04:00.0: address 03:00.0 -> 04:00.0",
                                                "05:00.0: address 04:00.0 -> 05:00.0"));
}

TEST(InstanceDiff, AnotherCardAtThePlaceIsAReplacement) {
  Machine before, after;
  before.AddFunction(3, 0, 0xA);
  after.AddFunction(3, 0, 0xB, nullptr, 2);
  EXPECT_THAT(Texts(before, after),
              ElementsAre("03:00.0: replaced by another card: 8086:000a -> 8086:000b",
                          "03:00.0: device 000a -> 000b", "03:00.0: hardware revision 01 -> 02"));
}

TEST(InstanceDiff, ARenumberedSlotIsTheSameSlot) {
  Machine before, after;
  before.AddFunction(3, 0, 0xA, before.AddSlot("Tag 1", "X", 1));
  after.AddSlot("Tag 1", "NEW", 9);
  after.AddFunction(3, 0, 0xA, after.AddSlot("Tag 2", "X", 1));
  EXPECT_THAT(Texts(before, after),
              UnorderedElementsAre("NEW (Tag 1): added", "X (Tag 2): Tag: \"Tag 1\" -> \"Tag 2\""));
}

TEST(InstanceDiff, SaysThatASlotIsNowEmpty) {
  Machine before, after;
  before.AddSlot("Tag 1", "X", 1, 4);
  after.AddSlot("Tag 1", "X", 1, 3);
  EXPECT_THAT(Texts(before, after), ElementsAre("X (Tag 1): now empty: usage In use -> Available"));
}

TEST(InstanceDiff, ALinkThatIsDownHasNeitherWidthNorSpeed) {
  Machine up, down;
  for (Machine* machine : {&up, &down}) machine->AddFunction(3, 0, 0xA);
  up.AddListing({"03:00.0 Something", "\t\tLnkSta:\tSpeed 8GT/s, Width x16"});
  down.AddListing({"03:00.0 Something", "\t\tLnkSta:\tSpeed 2.5GT/s, Width x0"});
  EXPECT_THAT(Texts(up, down, {"RawResult"}), ElementsAre("03:00.0: link down (was x16)"));
  EXPECT_THAT(Texts(down, up, {"RawResult"}), ElementsAre("03:00.0: link up: x16, 8GT/s"));
}

TEST(InstanceDiff, LinksComeFromTheListing) {
  Machine before, after;
  for (Machine* machine : {&before, &after}) machine->AddFunction(3, 0, 0xA);
  before.AddListing({"03:00.0 Something", "\t\tLnkSta:\tSpeed 8GT/s, Width x16"});
  after.AddListing({"03:00.0 Something", "\t\tLnkSta:\tSpeed 16GT/s, Width x8 (downgraded)"});
  EXPECT_THAT(
      Texts(before, after, {"RawResult"}),
      ElementsAre("03:00.0: link narrower: x16 -> x8", "03:00.0: link faster: 8GT/s -> 16GT/s"));
  EXPECT_THAT(Texts(before, after, {"LinkSpeed", "LinkWidth"}),
              ElementsAre(testing::StartsWith(
                  "lspci -vvv: listing: 2 lines -> 2 lines; first difference at line 2: ")));
}

TEST(InstanceDiff, ReportsASystemNameOnce) {
  Machine before("old"), after("new");
  for (Machine* machine : {&before, &after}) {
    machine->AddFunction(1, 0, 0xA);
    machine->AddFunction(2, 0, 0xA);
  }
  EXPECT_THAT(Texts(before, after), ElementsAre("system: SystemName: \"old\" -> \"new\""));
  EXPECT_THAT(Texts(before, after, {"SystemName"}), IsEmpty());
}

TEST(InstanceDiff, ReportsOtherPropertiesByName) {
  const auto before = MakeFixedRepository();
  const auto after = MakeFixedRepository();
  const auto& device = after->Find("QZMSG_PCIDevice")->GetInstances().front();
  device->SetProperty("UINumber", TCIMValue(static_cast<unsigned char>(9)), {});
  device->SetProperty("MEMAddress", TCIMValue(), {});
  const InstanceDiff result = CompareInstances({before.get(), true}, {after.get(), true}, {});
  ASSERT_EQ(result.changes.size(), 2U);
  EXPECT_EQ(result.changes[0].text, "memory addresses [0xf7000000, 0xe0000000] -> (not set)");
  EXPECT_EQ(result.changes[1].text, "UINumber: 1 -> 9");
  EXPECT_EQ(result.changes[1].oldValue, TCIMValue(static_cast<unsigned char>(1)));
}

TEST(InstanceDiff, DoesNotCompareClassesMissingFromJson) {
  const auto whole = MakeFixedRepository();
  Machine part;
  part.AddSlot("Tag 1", "PCIEX16_1");
  const InstanceDiff result = CompareInstances({whole.get(), true}, {&part.Get(), false}, {});
  EXPECT_TRUE(result.hasCompared);
  EXPECT_THAT(result.onlyOld, Contains("QZMSG_PCIDevice"));
  EXPECT_THAT(result.onlyNew, IsEmpty());
  for (const InstanceChange& change : result.changes)
    EXPECT_EQ(change.subject, "slot") << change.text;
  const auto empty = MakeEmptyRepository();
  EXPECT_FALSE(CompareInstances({whole.get(), false}, {empty.get(), false}, {}).hasCompared);
}

/// Has the classes of the inventory without instances, and the invented machine's topology.
std::shared_ptr<vtq::Namespace> MakeOtherClasses() {
  auto repository = MakeEmptyRepository();
  for (vtq::ClassSchema& schema : LoadClasses(TOPOLOGY_CLASS_FILE)) {
    const std::string name = schema.name;
    repository->Declare(std::move(schema));
    fake::MakeTopologyInstances(*repository->Find(name));
  }
  return repository;
}

TEST(InstanceDiff, OtherClassesAreComparedByPath) {
  const auto before = MakeOtherClasses();
  const auto after = MakeOtherClasses();
  const auto& slot = after->Find("VTQ_PCISlot")->GetInstances().front();
  slot->SetProperty("State", TCIMValue("empty"), {});
  const InstanceDiff result = CompareInstances({before.get(), false}, {after.get(), false}, {});
  ASSERT_EQ(result.changes.size(), 1U);
  EXPECT_EQ(result.changes[0].subject, "instance");
  EXPECT_EQ(result.changes[0].text, "State: \"occupied\" -> \"empty\"");
}

}  // namespace
}  // namespace pciinfo
