// SPDX-License-Identifier: Apache-2.0
#include "plugin/entry.h"

#include <algorithm>
#include <stdexcept>

#include "framework/exception.h"
#include "plugin/class_names.h"
#include "plugin/collector.h"
#include "tests/fakes/failing_new.h"
#include "tests/fakes/host_locale.h"
#include "tests/fakes/plugin_fixture.h"
#include "tests/fakes/slot_record.h"
#include "tests/fakes/watched_framework.h"

using NQZMVTQ20::ICIMClass;
using NQZMVTQ20::ICIMInstance;
using NQZMVTQ20::ICIMNamespace;
using NQZMVTQ20::IPluginCallbacks;
using NQZMVTQ20::TPciInfoCallbacks;
using NQZMVTQ20::TPluginManagerNamespace;
using NQZMVTQ20::TQualifierMap;
using NQZMVTQ20::TVTQException;

namespace {

class FakePluginManager final : public TPluginManagerNamespace {
 public:
  void RegisterPlugin(IPluginCallbacks* callbacks) override { registered.push_back(callbacks); }
  std::string GetName(const TQualifierMap&) const override { return "plugins"; }
  std::shared_ptr<ICIMClass> GetClass(const std::string&, const TQualifierMap&) override {
    throw TVTQException("no classes here");
  }

  std::vector<IPluginCallbacks*> registered;
};

class StubCollector final : public TPci {
 public:
  using TPci::GetCIMInstances;
  StubCollector(std::shared_ptr<ICIMClass> cimClass, std::function<std::size_t()> count)
      : TPci(std::move(cimClass)), count_(std::move(count)) {}

  std::vector<ICIMInstance*> GetCIMInstances(std::string) override {
    return std::vector<ICIMInstance*>(count_(), nullptr);
  }

 private:
  std::function<std::size_t()> count_;
};

const std::string kReceived = "3 TPciInfoCallbacks::GetData - Received request for class ";
const std::string kNormalExit = "3 TPciInfoCallbacks::GetData - Normal exit from plugin.";
const std::string kRetrieved =
    "3 TPciInfoCallbacks::retrieveDataForClass - Data successfully retrieved.";
const std::string kNoInstances =
    "3 TPciInfoCallbacks::retrieveDataForClass - No instances of the requested class were created.";
const std::string kThrew = "2 PCIInfo plugin threw unknown exception";

using Lines = std::vector<std::string>;

}  // namespace

class EntryTest : public PluginTest {
 protected:
  EntryTest() { callbacks.SetProvider(&provider); }

  void Query(std::vector<std::shared_ptr<ICIMClass>> classes) {
    callbacks.GetData(nameSpace, classes);
  }

  std::shared_ptr<ICIMClass> DeclareAs(const std::string& name) {
    vtq::ClassSchema schema;
    schema.name = name;
    nameSpace->Declare(schema);
    return Class(name);
  }

  TPciInfoCallbacks callbacks;
};

TEST_F(EntryTest, SaysWhoItIs) {
  EXPECT_EQ(callbacks.GetType(), 0);
  EXPECT_EQ(callbacks.GetName(), "PCI Information Collector");
  EXPECT_EQ(callbacks.GetVersion(), "1.0");
  EXPECT_EQ(callbacks.GetInterfaceVersion(), "1.0");
}

TEST_F(EntryTest, RegistersItselfWithThePluginManager) {
  const auto manager = std::make_shared<FakePluginManager>();
  Fake().pluginManager = manager;
  auto* object = new TPciInfoCallbacks;
  EXPECT_EQ(manager->registered, std::vector<IPluginCallbacks*>{object});
  EXPECT_EQ(manager.use_count(), 2) << "the plug-in keeps no reference to the manager";
  object->PrepareForUnload();
}

TEST_F(EntryTest, RegistersNowhereWithoutAPluginManager) {
  Fake().pluginManager = nullptr;
  EXPECT_NO_THROW(TPciInfoCallbacks());
}

TEST_F(EntryTest, RegistersNowhereWhenTheManagerIsAnotherNamespace) {
  Fake().pluginManager = nameSpace;
  EXPECT_NO_THROW(TPciInfoCallbacks());
}

TEST_F(EntryTest, PrepareForUnloadDestroysTheObject) {
  class Watched final : public TPciInfoCallbacks {
   public:
    explicit Watched(bool* isGone) : isGone_(isGone) {}
    ~Watched() override { *isGone_ = true; }

   private:
    bool* isGone_;
  };
  bool isGone = false;
  IPluginCallbacks* object = new Watched(&isGone);
  object->PrepareForUnload();
  EXPECT_TRUE(isGone);
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(EntryTest, InitAndDeInitOnlyLog) {
  callbacks.Init();
  callbacks.DeInit();
  EXPECT_EQ(Fake().log, (Lines{"3 TPciInfoCallbacks::Init - Initializing the plugin.",
                               "3 TPciInfoCallbacks::DeInit - De-initializing the plugin."}));
  EXPECT_EQ(NQZMVTQ20::gStarted, 0);
}

TEST_F(EntryTest, EmptyClassListLogsOnlyTheNormalExit) {
  Query({});
  EXPECT_EQ(Fake().log, Lines{kNormalExit});
}

TEST_F(EntryTest, UnknownClassIsLoggedAndSkippedAndTheKnownOneServed) {
  Query({DeclareAs("Unknown"), Class(kSystemBoardClass)});
  EXPECT_EQ(Fake().log, (Lines{kReceived + "Unknown.", kReceived + "QZMSG_SystemBoard.",
                               "4 TPci::generateCIMInstance - Generating CIM instance for class "
                               "QZMSG_SystemBoard.",
                               kRetrieved, kNormalExit}));
  EXPECT_EQ(Instances(kSystemBoardClass).size(), 1U);
}

TEST_F(EntryTest, ClassNameInAnotherLetterCaseIsNotServed) {
  Query({DeclareAs("QZMSG_SYSTEMBOARD")});
  EXPECT_EQ(Fake().log, (Lines{kReceived + "QZMSG_SYSTEMBOARD.", kNormalExit}));
}

TEST_F(EntryTest, BoardQueryWithoutProviderLogsTheEntryLinesOnly) {
  callbacks.SetProvider(nullptr);
  Query({Class(kSystemBoardClass)});
  EXPECT_EQ(Fake().log, (Lines{kReceived + "QZMSG_SystemBoard.", kRetrieved, kNormalExit}));
}

TEST_F(EntryTest, ThrowingCollectorYieldsTheExceptionLineAndNoInstances) {
  const auto faulty = std::make_shared<FaultyClass>(Class(kSystemBoardClass));
  faulty->onCreate = [](int) { throw std::runtime_error("broken"); };
  Query({faulty});
  EXPECT_EQ(Fake().log, (Lines{kReceived + "QZMSG_SystemBoard.",
                               "4 TPci::generateCIMInstance - Generating CIM instance for class "
                               "QZMSG_SystemBoard.",
                               kThrew, kNoInstances, kNormalExit}));
}

TEST_F(EntryTest, QueryGoesOnWithTheNextClassAfterAThrowingCollector) {
  const auto faulty = std::make_shared<FaultyClass>(Class(kSystemBoardClass));
  faulty->onCreate = [](int) { throw 1; };
  Query({faulty, Class(kSystemBoardClass)});
  EXPECT_EQ(Instances(kSystemBoardClass).size(), 1U);
}

TEST_F(EntryTest, ExceptionFromReadingTheNameLeavesTheQuery) {
  const auto faulty = std::make_shared<FaultyClass>(Class(kSystemBoardClass));
  faulty->onGetName = [] { throw TVTQException("no name"); };
  EXPECT_THROW(Query({faulty}), TVTQException);
  EXPECT_TRUE(Fake().log.empty()) << "no normal exit";
}

// The constructor of the first collector of PCI functions loads the slot tables.
TEST_F(EntryTest, ExceptionFromMakingACollectorLeavesTheQuery) {
  SlotRecord slot;
  slot.bus = 3;
  Fake().smBios.structures = {slot.Bytes()};
  std::vector<std::shared_ptr<ICIMClass>> classes{Class(kPciRawDataClass),
                                                  Class(kSystemBoardClass)};
  const long before = classes[0].use_count();
  {
    const FailingNew noMemory(sizeof(SlotLocation));
    EXPECT_THROW(callbacks.GetData(nameSpace, classes), std::bad_alloc);
  }
  EXPECT_EQ(Fake().log,
            (Lines{kReceived + "QZMSG_PCIRawData.", "3 Entering GetSlotIDRetrievalType",
                   "3 Exiting GetSlotIDRetrievalType, current SMBIOS version >= 2.6 and "
                   "type 9 contains bus info",
                   "3 Entering readPCISlotLocation"}))
      << "neither a collection nor a normal exit";
  EXPECT_EQ(classes[0].use_count(), before);
  EXPECT_EQ(Fake().smBios.openHandles, 0);
}

TEST_F(EntryTest, KeepsNoReferenceToTheClassesItServed) {
  const std::shared_ptr<ICIMClass> board = Class(kSystemBoardClass);
  const long before = board.use_count();
  Query({board});
  EXPECT_EQ(board.use_count(), before);
}

TEST_F(EntryTest, EachRequestOfAQueryHasACollectorOfItsOwn) {
  Fake().smBios.structures = {SlotRecord().Bytes()};
  Query({Class(kSystemSlotClass), Class(kSystemSlotClass)});
  ASSERT_EQ(Instances(kSystemSlotClass).size(), 1U) << "both requests made the slot \"Tag 1\"";
  EXPECT_EQ(Text(*Instances(kSystemSlotClass)[0], "Tag"), "Tag 1");
  EXPECT_EQ(std::count(Fake().log.begin(), Fake().log.end(), kRetrieved), 2);
}

TEST_F(EntryTest, EveryServedClassReachesACollector) {
  Fake().smBios.loadStatus = 2;
  Fake().commands["lspci"] = [] { return std::string(); };
  PutFunctions({});
  for (const char* name : {kPciDeviceClass, kPciBridgeClass, kDeviceInSlotClass, kPciRawDataClass,
                           kSystemSlotClass, kSystemBoardClass, kOnBoardDeviceClass}) {
    Fake().log.clear();
    Query({Class(name)});
    EXPECT_EQ(Fake().log.front(), kReceived + name + ".");
    // If no collector had been created, the normal exit would follow at once.
    EXPECT_GT(Fake().log.size(), 2U) << name;
    EXPECT_EQ(Fake().log.back(), kNormalExit);
  }
}

// A machine on which every class has an instance, with numbers of five digits. One function has
// other identifiers in its header than in the device list.
void BecomeSmallMachine() {
  SlotRecord slot;
  slot.bus = 3;
  slot.slotId = 0xFFFE;
  Fake().smBios.structures = {slot.Bytes()};
  for (const char* command : {"lspci", "lspci -xxxx", "lspci -vvv"}) {
    Fake().commands[command] = [] { return std::string("a line\n"); };
  }
  FakeFunction bridge;
  bridge.baseClass = 0x06;
  FakeFunction card;
  card.bus = 3;
  card.baseAddresses[0] = "  df200000";
  card.sizes[0] = "0x10000";
  FakeFunction other;
  other.device = 1;
  PutFunctions({bridge, card, other});
  MachineTree::Write("/sys/bus/pci/devices/0000:03:00.0/config", AsText(Header(card)));
  other.vendorId = 0xFFFE;
  MachineTree::Write("/proc/bus/pci/00/01.0", AsText(Header(other)));
}

TEST_F(EntryTest, EveryServedClassIsCollectedByItsOwnCollector) {
  BecomeSmallMachine();
  const std::vector<std::pair<const char*, std::size_t>> expected{
      {kPciDeviceClass, 1},   {kPciBridgeClass, 1},    {kSystemSlotClass, 1},
      {kSystemBoardClass, 1}, {kDeviceInSlotClass, 1}, {kOnBoardDeviceClass, 1},
      {kPciRawDataClass, 2}};
  for (const auto& [name, count] : expected) {
    Query({Class(name)});
    EXPECT_EQ(Instances(name).size(), count) << name;
  }
}

// The log and the values of all instances, on a plug-in and a framework that know nothing yet.
class FreshPlugin : public EntryTest {
 public:
  void TestBody() override {}

  void CollectAll() {
    BecomeSmallMachine();
    for (const char* name : {kPciDeviceClass, kPciBridgeClass, kSystemSlotClass, kSystemBoardClass,
                             kDeviceInSlotClass, kOnBoardDeviceClass, kPciRawDataClass}) {
      Query({Class(name)});
      for (const auto& instance : Instances(name)) {
        paths.push_back(instance->GetPath());
        const std::size_t count = Class(name)->GetSchema().properties.size();
        for (std::size_t i = 0; i < count; ++i) values.push_back(instance->GetValue(i));
      }
    }
    log = Fake().log;
  }

  Lines log;
  Lines paths;
  NQZMVTQ20::TCIMValue::TArray values;
};

TEST(EntryLocaleTest, DigitGroupingOfTheHostChangesNothing) {
  FreshPlugin plain;
  plain.CollectAll();
  EXPECT_EQ(plain.paths.size(), 8U);
  EXPECT_EQ(std::count(plain.log.begin(), plain.log.end(),
                       "2 Configuration vendor id 65534 and devices file vendor id 32902 did not "
                       "match."),
            1);
  for (const char separator : {',', '.'}) {
    const GroupingLocale locale(separator);
    FreshPlugin grouped;
    grouped.CollectAll();
    EXPECT_EQ(grouped.log, plain.log) << separator;
    EXPECT_EQ(grouped.paths, plain.paths) << separator;
    EXPECT_EQ(grouped.values, plain.values) << separator;
  }
}

TEST_F(EntryTest, QueryAsksEachClassForItsNameTwice) {
  WatchedFramework watch(nameSpace);
  Query({watch.Class(kOnBoardDeviceClass), watch.Class(kSystemBoardClass)});
  const auto names = [&](const std::string& name) {
    return std::count(watch.operations.begin(), watch.operations.end(), name + " GetName");
  };
  EXPECT_EQ(names(kOnBoardDeviceClass), 2) << "for the dispatch and for the collector";
  EXPECT_EQ(names(kSystemBoardClass), 3) << "and before the instance is committed";
}

TEST_F(EntryTest, RetrieveDataForClassAnswersZeroWhateverTheOutcome) {
  StubCollector some(Class(kSystemBoardClass), [] { return std::size_t{2}; });
  EXPECT_EQ(callbacks.RetrieveDataForClass(&some), 0);
  StubCollector none(Class(kSystemBoardClass), [] { return std::size_t{0}; });
  EXPECT_EQ(callbacks.RetrieveDataForClass(&none), 0);
  StubCollector throwing(Class(kSystemBoardClass),
                         []() -> std::size_t { throw TVTQException("broken"); });
  EXPECT_EQ(callbacks.RetrieveDataForClass(&throwing), 0);
  EXPECT_EQ(Fake().log, (Lines{kRetrieved, kNoInstances, kThrew, kNoInstances}));
}

// The records of one function between the lines of its map.
Lines PropertyLines(const std::string& descriptionSource) {
  return {"3 Entering TPciDevInfo::GetCommonDevProperties routine", "3 SMBIOS version not support.",
          "3 Entering TPciDevInfo::GetLspciDeviceDescription routine", descriptionSource,
          "3 Exiting TPciDevInfo::GetCommonDevProperties routine"};
}

TEST_F(EntryTest, PciQueryOnAThreeFunctionMachineLogsEveryStep) {
  Fake().smBios.loadStatus = 2;
  Fake().commands["lspci"] = [] {
    return std::string("00:00.0 Host bridge: A\n00:02.0 Display: B\n00:1f.3 Audio: C\n");
  };
  FakeFunction bridge;
  bridge.baseClass = 0x06;
  FakeFunction display;
  display.device = 2;
  FakeFunction audio;
  audio.device = 0x1f;
  audio.function = 3;
  PutFunctions({bridge, display, audio});
  Query({Class(kPciDeviceClass)});

  Lines expected{kReceived + "QZMSG_PCIDevice.",
                 "3 Entering GetSlotIDRetrievalType",
                 "0 Unable to open SMBIOS library error: 2",
                 "3 Entering TPciDevInfo::GetPciInfo routine",
                 "3 Entering TPciDevInfo::ScanPciDevices routine",
                 "3 Exiting TPciDevInfo::ScanPciDevices routine"};
  for (const bool isDevice : {false, true, true}) {
    expected.push_back("3 Entering TPciDevInfo::PciRead routine");
    expected.push_back("3 Exiting TPciDevInfo::PciRead routine");
    if (isDevice) {
      expected.push_back("3 Entering TPciDevInfo::PopulatePciDeviceProperties routine");
    }
    const Lines properties =
        PropertyLines("3 Exiting TPciDevInfo::GetLspciDeviceDescription routine");
    expected.insert(expected.end(), properties.begin(), properties.end());
    if (isDevice) expected.push_back("3 Exiting TPciDevInfo::PopulatePciDeviceProperties routine");
  }
  expected.push_back("3 Exiting TPciDevInfo::GetPciInfo routine");
  for (int device = 0; device < 2; ++device) {
    expected.push_back(
        "4 TPci::generateCIMInstance - Generating CIM instance for class "
        "QZMSG_PCIDevice.");
  }
  expected.push_back(kRetrieved);
  expected.push_back(kNormalExit);
  EXPECT_EQ(Fake().log, expected);
}
