// SPDX-License-Identifier: Apache-2.0
#include "host/schema/json_schema.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "host/check/class_checks.h"
#include "host/check/finding_view.h"
#include "host/check/machine_checks.h"
#include "host/diff/machine_diff_view.h"
#include "host/instance_diff/instance_diff.h"
#include "host/instance_diff/instance_diff_view.h"
#include "host/views/devices_view.h"
#include "host/views/overview.h"
#include "host/views/show_view.h"
#include "host/views/slots_view.h"
#include "host/views/tree_view.h"
#include "tests/fakes/pci_schema.h"
#include "tests/host/class_facts_maker.h"
#include "tests/host/collected_machine.h"
#include "tests/host/fixed_repository.h"
#include "tests/host/run_program.h"
#include "tests/host/written.h"
#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

using nlohmann::json;

/// The schema of the classes of all plug-ins.
std::string SchemaText() {
  Declarations all{PciSchema(), {}};
  ReadClassFile(TOPOLOGY_CLASS_FILE, all);
  OutputToText output;
  WriteJsonSchema(output.Get(), all.classes);
  return output.Text();
}

/// The JSON output of the views: slots, devices, tree, overview, and what `show` prints.
std::vector<std::string> ViewTexts() {
  const auto repository = MakeTopologyRepository();
  const MachineModel machine = ReadMachine(*repository);
  std::vector<std::string> texts;
  const auto add = [&texts](const auto& write) {
    OutputToText output;
    write(output.Get());
    texts.push_back(output.Text());
  };
  add([&](Output& output) { WriteSlotsJson(output, machine); });
  add([&](Output& output) { WriteDevicesJson(output, machine); });
  add([&](Output& output) { WriteTreeJson(output, MakePortTree(machine), machine); });
  add([&](Output& output) {
    WriteOverviewJson(output, {{}, "box", "class=02", machine, {"a reason"}});
  });
  for (const char* name : {"01:00.0", "PCIEX16_1", "eth0"}) {
    add([&](Output& output) { WriteShownJson(output, *FindNamed(*repository, name)); });
  }
  return texts;
}

MachineDiff MadeMachineDiff() {
  FactChange driver = {"Driver", "a", std::nullopt, "driver a -> (none)"};
  ObjectChange changed = {ObjectChange::Op::kChange, "function", "a card", {{0, {1, 0, 0}}},
                          {{0, {2, 0, 0}}},          {},         {driver}};
  ObjectChange added = {ObjectChange::Op::kAdd, "slot", "A", {}, {}, {"A"},
                        {{"", {}, {}, "added"}}};
  return {{changed, added},
          {{DiffSideName::kBefore, "SerialNumber", "serial number of 1 function", "a reason"}}};
}

/// The JSON output of `diff`: of machines and of instances, with and without changes.
std::vector<std::string> DiffTexts() {
  const DiffHeading heading = {"a", "b", {"IRQ"}};
  std::vector<std::string> texts;
  for (const MachineDiff& diff : {MadeMachineDiff(), MachineDiff()}) {
    OutputToText output;
    WriteMachineDiffJson(output.Get(), heading, diff);
    texts.push_back(output.Text());
  }
  const auto before = MakeFixedRepository();
  const auto after = MakeEmptyRepository();
  for (const auto& other : {after, before}) {
    OutputToText output;
    const auto diff = CompareInstances({before.get(), true}, {other.get(), true}, {});
    WriteInstanceDiffJson(output.Get(), heading, diff);
    texts.push_back(output.Text());
  }
  return texts;
}

/// The JSON output of `check`: with findings about functions and slots, without any, and with those
/// of the classes.
std::vector<std::string> CheckTexts() {
  MachineFacts machine = ReadMachineFacts(*MakeTopologyRepository());
  machine.machine.slots.front().powerFault = true;
  ClassFacts classes = MakeSoundFacts();
  classes.listingFailure = "no such program";
  std::vector<std::string> texts;
  for (const auto& findings : {FindWith(MachineChecks(), machine), std::vector<CheckFinding>(),
                               FindWith(ClassChecks(), classes)}) {
    OutputToText output;
    WriteFindingsJson(output.Get(), findings);
    texts.push_back(output.Text());
  }
  return texts;
}

/// All lines of a machine: itself, its functions and its slots.
std::string Lines() {
  CollectedMachine machine = MakeCollectedMachine();
  machine.facts.functions[0].systemDevices = {{"network", "eth0", "52:54:00:12:34:56", "", "", ""}};
  machine.findings = FindWith(MachineChecks(), machine.facts);
  OutputToText output;
  output.Get().Write(MachineLine(machine) + "\n");
  WriteDevicesJsonLines(output.Get(), machine.facts.machine, machine.stamp);
  WriteSlotsJsonLines(output.Get(), machine.facts.machine, machine.stamp);
  return output.Text();
}

/// Prints for each document of the list whether it is valid.
constexpr const char* kValidate = R"(
import json, sys, jsonschema
schema = json.load(open(sys.argv[1]))
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)
for document in json.load(open(sys.argv[2])):
    print("valid" if validator.is_valid(document) else "invalid")
)";

class JsonSchema : public testing::Test {
 protected:
  void SetUp() override {
    if (RunProcess({"/usr/bin/python3", "-c", "import jsonschema"}).status != 0) {
      GTEST_SKIP() << "python3-jsonschema is not installed";
    }
  }

  /// The verdict of a validator on each document, or its error.
  std::vector<std::string> Verdicts(const json& documents) const {
    std::ofstream(SchemaFile()) << SchemaText();
    std::ofstream(DocumentsFile()) << documents;
    const RunResult result =
        RunProcess({"/usr/bin/python3", "-c", kValidate, SchemaFile(), DocumentsFile()});
    return result.status == 0 ? LinesOf(result.out) : std::vector<std::string>{result.err};
  }

 private:
  std::string SchemaFile() const { return directory_ / "schema.json"; }
  std::string DocumentsFile() const { return directory_ / "documents.json"; }

  vtq::TemporaryDirectory directory_;
};

TEST(PublishedJsonSchema, IsTheOneThatTheProgramPrints) {
  std::ifstream stream(JSON_SCHEMA);
  const std::string published{std::istreambuf_iterator<char>(stream), {}};
  EXPECT_EQ(published, SchemaText()) << "run: pciinfo schema --format json-schema > " JSON_SCHEMA;
}

TEST(PublishedJsonSchema, HasAVersion) {
  EXPECT_EQ(json::parse(SchemaText())["$id"],
            std::string("urn:pciinfo:json-schema:") + kJsonSchemaVersion);
}

TEST(PublishedJsonSchema, NamesTheValuesOfCodedProperties) {
  const json schema = json::parse(SchemaText());
  const json& properties =
      schema["$defs"]["QZMSG_SystemSlot"]["properties"]["properties"]["properties"];
  EXPECT_EQ(properties["CurrentUsage"]["x-values"]["4"], "In use");
  EXPECT_FALSE(properties["Number"].contains("x-values"));
}

TEST_F(JsonSchema, AcceptsTheProgramsOutput) {
  const auto repository = MakeFixedRepository();
  json documents = {json::parse(Written("json", *repository)),
                    json::parse(Written("json", *MakeEmptyRepository()))};
  for (const std::string& text : ViewTexts()) documents.push_back(json::parse(text));
  for (const std::string& text : CheckTexts()) documents.push_back(json::parse(text));
  for (const std::string& text : DiffTexts()) documents.push_back(json::parse(text));
  for (const std::string& line : LinesOf(Written("jsonl", *repository))) {
    documents.push_back(json::parse(line));
  }
  for (const std::string& line : LinesOf(Lines())) documents.push_back(json::parse(line));
  EXPECT_EQ(Verdicts(documents), std::vector<std::string>(documents.size(), "valid"));
}

TEST_F(JsonSchema, RejectsInvalidDocuments) {
  const json slot = json::parse(Written("json", *MakeFixedRepository(), {"QZMSG_SystemSlot"}));
  const json link = json::parse(Written("json", *MakeFixedRepository(), {"QZMSG_DeviceInSlot"}));
  const std::vector<std::string> views = ViewTexts();
  const json slots = json::parse(views[0]);
  json documents = json::array();
  const auto add = [&documents](json document, const char* pointer, json value) {
    document[json::json_pointer(pointer)] = std::move(value);
    documents.push_back(std::move(document));
  };
  add(slot, "/instances/0/class", "QZMSG_Other");
  add(slot, "/instances/0/class", "QZMSG_PCIDevice");
  add(slot, "/instances/0/path", "/root/cimv2:QZMSG_PCIDevice.x=\"\"");
  add(slot, "/instances/0/properties/Number", 65536);
  add(slot, "/instances/0/properties/Number", "7");
  add(slot, "/instances/0/properties/ConnectorType", 182);
  add(slot, "/instances/0/properties/ConnectorType", {"182"});
  add(slot, "/instances/0/properties/SupportsHotPlug", 0);
  add(slot, "/instances/0/properties", json::object());
  add(link, "/instances/0/properties/Antecedent", "/root/cimv2:QZMSG_PCIDevice.x=\"\"");
  add(slots, "/slots/0/type", 182);
  add(slots, "/slots/0/state", "full");
  add(slots, "/slots/0/functions/0/certainty", "perhaps");
  add(slots, "/shared/0/port", "00:01.1");
  add(slots, "/conflicts/0/slot", 1);
  add(slots, "/onBoard/0/kind", "board");
  add(json::parse(views[1]), "/functions/0/class/base", 256);
  add(json::parse(views[1]), "/functions/0/id", "8086");
  add(json::parse(views[2]), "/buses/0/functions/1/functions/0/address", "1");
  const std::vector<std::string> diffs = DiffTexts();
  add(json::parse(diffs[0]), "/changes/0/op", "changed");
  add(json::parse(diffs[0]), "/changes/0/functions/0", "01:00.0");
  add(json::parse(diffs[0]), "/changes/1/slots/0", 1);
  add(json::parse(diffs[0]), "/notCompared/0/unknownIn", "both");
  add(json::parse(diffs[1]), "/compared", "both");
  add(json::parse(diffs[2]), "/changes/0/subject", "card");
  add(json::parse(views[3]), "/counts/slots", "six");
  add(json::parse(views[4]), "/function/address", "01:00.0");
  add(json::parse(views[5]), "/slot/ports", "none");
  add(json::parse(views[6]), "/details/class", "Other");
  const json check = json::parse(CheckTexts()[0]);
  add(check, "/findings/0/severity", "grave");
  add(check, "/findings/0/code", "Two words");
  add(check, "/findings/0/objects", json::array());
  add(check, "/findings/0/objects/0", "0000:01:00.0");
  add(check, "/findings/1/objects/0/object", "01:00.0");
  documents.push_back(json::object());
  documents.push_back(json::array());
  EXPECT_EQ(Verdicts(documents), std::vector<std::string>(documents.size(), "invalid"));
}

TEST_F(JsonSchema, AcceptsAdditionalKeys) {
  json document = json::parse(Written("json", *MakeFixedRepository()));
  document["new"] = 1;
  document["instances"][0]["new"] = 1;
  document["instances"][0]["properties"]["New"] = 1;
  EXPECT_EQ(Verdicts(json::array({document})), std::vector<std::string>{"valid"});
}

}  // namespace
}  // namespace pciinfo
