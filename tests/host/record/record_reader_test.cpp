// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>

#include "host/base/errors.h"
#include "host/record/machine_record.h"
#include "host/record/overview_json.h"
#include "tests/host/collected_machine.h"

namespace pciinfo {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::SizeIs;

constexpr const char* kUuid = "4c4c4544-0035-4d10-8052-b3c04f4c3132";
constexpr const char* kMachineId = "0123456789abcdef0123456789abcdef";
constexpr const char* kTime = "2024-05-06T07:08:09Z";

CollectedMachine MadeMachine() {
  CollectedMachine machine = MakeCollectedMachine();
  FunctionFacts& facts = machine.facts.functions.back();
  facts.serialNumber = "00-1b-21-ff-ff-a0-b1-c2";
  facts.partNumber = "P-1";
  facts.productName = "A card";
  facts.systemDevices = {{"network", "eth0", "52:54:00:12:34:56", "", "", ""},
                         {"nvme", "nvme0", "", "A disk", "S1", "1.2"}};
  machine.findings = {{"link-narrow",
                       Severity::kWarning,
                       "What.",
                       "Advice.",
                       {{"01:00.0", "", "x8 of x16", "function", "0000:01:00.0", "A card"}}}};
  machine.notRead = {"there are no tables", "VTQ_PCISlot: a trouble"};
  machine.troubles = {"VTQ_PCISlot: a trouble"};
  return machine;
}

json MadeDocument() { return json::parse(MachineLine(MadeMachine())); }

/// Returns what ParseRecord says of the made document after a change.
std::string Refusal(const std::function<void(json& document)>& change) {
  json document = MadeDocument();
  change(document);
  try {
    ParseRecord(document.dump());
  } catch (const UsageError& error) {
    return error.what();
  }
  return "not refused";
}

std::string RefusalOf(const std::string& text) {
  try {
    ParseRecord(text);
  } catch (const UsageError& error) {
    return error.what();
  }
  return "not refused";
}

TEST(RecordReader, ReadsTheHeadOfALine) {
  const MachineRecord record = RecordOf(MadeMachine());
  EXPECT_EQ(record.name, "box");
  EXPECT_EQ(record.systemUuid, kUuid);
  EXPECT_EQ(record.machineId, kMachineId);
  EXPECT_EQ(record.collected, kTime);
  EXPECT_EQ(record.version, PCIINFO_VERSION);
  EXPECT_EQ(record.identity.maker, "Dell Inc.");
  EXPECT_THAT(record.troubles, ElementsAre("VTQ_PCISlot: a trouble"));
}

TEST(RecordReader, ReadsEveryFunctionOnceSortedByAddress) {
  const MachineModel machine = MadeMachine().facts.machine;
  const MachineRecord record = RecordOf(MadeMachine());
  ASSERT_EQ(record.functions.size(), machine.functions.size());
  for (std::size_t i = 0; i < machine.functions.size(); ++i) {
    const MachineFunction& function = machine.functions[i];
    const RecordedFunction& recorded = record.functions[i];
    EXPECT_EQ(recorded.address, FormatAddress(function.address));
    EXPECT_EQ(recorded.isBridge, function.IsBridge());
    EXPECT_EQ(recorded.vendorId, function.vendorId);
    EXPECT_EQ(recorded.maxLinkWidth, function.link.maxWidth);
    EXPECT_EQ(recorded.maxLinkSpeed, function.link.maxSpeed);
    EXPECT_EQ(recorded.slot, function.slot ? machine.slots[*function.slot].name : "");
  }
}

TEST(RecordReader, ReadsDetailsOfFunctions) {
  const RecordedFunction function = RecordOf(MadeMachine()).functions.back();
  EXPECT_EQ(function.serialNumber, "00-1b-21-ff-ff-a0-b1-c2");
  EXPECT_EQ(function.partNumber, "P-1");
  EXPECT_EQ(function.productName, "A card");
  EXPECT_THAT(function.systemDevices,
              ElementsAre(AllOf(Field(&SystemDevice::kind, "network"),
                                Field(&SystemDevice::hardwareAddress, "52:54:00:12:34:56")),
                          AllOf(Field(&SystemDevice::model, "A disk"),
                                Field(&SystemDevice::serialNumber, "S1"),
                                Field(&SystemDevice::firmware, "1.2"))));
}

TEST(RecordReader, TakesTheSerialNumberOfTheProductWithoutOneOfTheDevice) {
  CollectedMachine machine = MadeMachine();
  machine.facts.functions.back().serialNumber = "00-00-00-00-00-00-00-00";
  machine.facts.functions.back().productSerialNumber = "PSN";
  EXPECT_EQ(RecordOf(machine).functions.back().serialNumber, "PSN");
}

TEST(MachineLine, LeavesOutNumbersThatTellNothing) {
  CollectedMachine machine = MadeMachine();
  for (const char* number : {"00-00-00-00", "ff-ff-ff-ff", "XXXXXX", "   "}) {
    machine.facts.functions.back().serialNumber = number;
    EXPECT_EQ(RecordOf(machine).functions.back().serialNumber, "") << number;
  }
}

TEST(RecordReader, ReadsSlots) {
  const MachineModel machine = MadeMachine().facts.machine;
  const MachineRecord record = RecordOf(MadeMachine());
  ASSERT_EQ(record.slots.size(), machine.slots.size());
  const RecordedSlot& first = record.slots.front();
  EXPECT_EQ(first.name, machine.slots.front().name);
  EXPECT_EQ(first.source, machine.slots.front().source);
  EXPECT_EQ(first.ports, machine.slots.front().ports);
  const auto shared =
      std::find_if(record.slots.begin(), record.slots.end(),
                   [](const RecordedSlot& slot) { return slot.name == "PCIEX4_1"; });
  ASSERT_NE(shared, record.slots.end());
  EXPECT_THAT(shared->sharedWith, ElementsAre("PCIEX4_2"));
}

TEST(RecordReader, KnowsTheLanesOfAWidth) {
  const auto lanesOf = [](unsigned code) {
    json document = MadeDocument();
    document["slots"][0]["width"] = {{"code", code}, {"text", "a width"}};
    return ParseRecord(document.dump()).slots[0].lanes;
  };
  EXPECT_EQ(lanesOf(8), 1U);
  EXPECT_EQ(lanesOf(0x0D), 16U);
  EXPECT_EQ(lanesOf(0x0E), 32U);
  for (const unsigned code : {0U, 5U, 7U, 0x0FU, 0xFFFFU}) EXPECT_EQ(lanesOf(code), std::nullopt);
}

TEST(RecordReader, ReadsFindingsObjectByObject) {
  const MachineRecord record = RecordOf(MadeMachine());
  ASSERT_THAT(record.findings, SizeIs(1));
  EXPECT_EQ(record.findings[0].code, "link-narrow");
  EXPECT_EQ(record.findings[0].severity, "warning");
  EXPECT_EQ(record.findings[0].object, "0000:01:00.0");
  EXPECT_EQ(record.findings[0].text, "x8 of x16");
}

TEST(RecordReader, ReadsTheOverview) {
  const CollectedMachine machine = MadeMachine();
  const auto document =
      OverviewJson({machine.identity, "box", "", machine.facts.machine, machine.notRead});
  const MachineRecord record = ParseRecord(document.dump(1));
  EXPECT_EQ(record.name, "box");
  EXPECT_EQ(record.collected, "");
  EXPECT_EQ(record.functions.size(), machine.facts.machine.functions.size());
  EXPECT_EQ(record.troubles, machine.notRead);
}

TEST(RecordReader, RefusesWhatIsNotAMachine) {
  EXPECT_THAT(RefusalOf(""), HasSubstr("this is not the JSON of a machine: "));
  EXPECT_THAT(RefusalOf("[]"), HasSubstr("it is not an object"));
  EXPECT_THAT(RefusalOf("{}"), HasSubstr("system is missing"));
  EXPECT_THAT(RefusalOf("{\"system\":\"\xff\"}"), HasSubstr("ill-formed UTF-8"));
  EXPECT_THAT(RefusalOf("{\"system\":NaN}"), HasSubstr("this is not the JSON"));
  EXPECT_THAT(RefusalOf("{\"system\":1e999}"), HasSubstr("this is not the JSON"));
  EXPECT_THAT(RefusalOf(MachineLine(MadeMachine()) + "{}"), HasSubstr("this is not the JSON"));
}

TEST(RecordReader, RefusesDeepNestingWithoutExhaustingTheStack) {
  constexpr std::size_t kDepth = 300'000;
  EXPECT_THAT(RefusalOf(std::string(kDepth, '[') + std::string(kDepth, ']')),
              HasSubstr("it is not an object"));
  std::string line = MachineLine(MadeMachine());
  line.back() = ',';
  line += "\"more\":" + std::string(kDepth, '[') + std::string(kDepth, ']') + "}";
  EXPECT_EQ(ParseRecord(line).name, "box");
}

TEST(RecordReader, SaysWhichMemberIsWrong) {
  EXPECT_THAT(Refusal([](json& document) { document.erase("slots"); }),
              HasSubstr("slots is missing"));
  EXPECT_THAT(Refusal([](json& document) { document["system"] = 1; }),
              HasSubstr("system is not a text"));
  EXPECT_THAT(Refusal([](json& document) { document["onBoard"] = json::object(); }),
              HasSubstr("onBoard is not an array"));
  EXPECT_THAT(Refusal([](json& document) { document["slots"][1] = 3; }),
              HasSubstr("slots[1] is not an object"));
  EXPECT_THAT(Refusal([](json& document) { document["slots"][0]["state"] = "full"; }),
              HasSubstr("slots[0].state is not one of: occupied, empty, unknown"));
  EXPECT_THAT(Refusal([](json& document) { document["unknown"][0]["address"] = "00:1f.0"; }),
              HasSubstr("unknown[0].address is not an address such as 0000:01:00.0"));
  EXPECT_THAT(Refusal([](json& document) { document["slots"][0]["ports"] = {"x"}; }),
              HasSubstr("slots[0].ports is not an array of addresses"));
  EXPECT_THAT(Refusal([](json& document) { document["slots"].push_back(document["slots"][0]); }),
              HasSubstr("].name is not unique"));
  EXPECT_THAT(Refusal([](json& document) { document["filter"] = "class=02"; }),
              HasSubstr("was printed with --filter"));
}

TEST(RecordReader, RefusesNumbersThatAreTooLargeOrNotWhole) {
  for (const json& number : {json(65536), json(-1), json(1.0), json(1ULL << 63U), json("1")}) {
    EXPECT_THAT(Refusal([&](json& document) { document["unknown"][0]["vendorID"] = number; }),
                HasSubstr("unknown[0].vendorID is not a whole number from 0 to 65535"));
  }
  for (const json& number : {json(1ULL << 31U), json(-(1LL << 31U) - 1), json(1.5), json(~0ULL)}) {
    EXPECT_THAT(Refusal([&](json& document) { document["unknown"][0]["numaNode"] = number; }),
                HasSubstr("numaNode is not a whole number"));
  }
}

TEST(RecordReader, RefusesIdentitiesOfAnotherForm) {
  for (const char* name : {"systemUUID", "machineID", "collected"}) {
    for (const char* text : {"", "x", "4C4C4544-0035-4D10-8052-B3C04F4C3132",
                             "00000000000000000000000000000000", "2024-06-31T00:00:00Z"}) {
      EXPECT_THAT(Refusal([&](json& document) { document[name] = text; }),
                  HasSubstr(std::string(name) + " is not "));
    }
  }
}

TEST(RecordReader, RefusesAMachineWithoutAnyIdentity) {
  EXPECT_THAT(Refusal([](json& document) {
                document["system"] = "";
                document.erase("systemUUID");
                document.erase("machineID");
              }),
              HasSubstr("does not say which one it is"));
  EXPECT_EQ(Refusal([](json& document) { document["system"] = ""; }), "not refused");
}

TEST(RecordReader, RefusesAPortThatTooManySlotsShare) {
  EXPECT_THAT(Refusal([](json& document) {
                document["shared"][0]["slots"] = std::vector<std::string>(65, "PCIEX4_1");
              }),
              HasSubstr("shared[0].slots is not an array of at most 64 names"));
}

TEST(RecordReader, MakesTextsPrintable) {
  json document = MadeDocument();
  document["troubles"] = {"a\nb", std::string("c\0d", 3)};
  EXPECT_THAT(ParseRecord(document.dump()).troubles, ElementsAre("a?b", "c?d"));
}

}  // namespace
}  // namespace pciinfo
