// SPDX-License-Identifier: Apache-2.0

// Texts of the machine, its firmware and the user's file names in every view and message.
#include <gtest/gtest.h>

#include <functional>
#include <nlohmann/json.hpp>

#include "host/check/finding_view.h"
#include "host/diff/machine_diff_view.h"
#include "host/instance_diff/instance_diff_view.h"
#include "host/views/devices_view.h"
#include "host/views/overview.h"
#include "host/views/show_view.h"
#include "host/views/slots_view.h"
#include "host/views/tree_view.h"
#include "tests/host/fixed_repository.h"
#include "tests/host/made_archive.h"
#include "tests/host/run_on_terminal.h"
#include "tests/host/run_program.h"
#include "tests/host/unsafe_text.h"
#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;

/// An unsafe character of each kind, in a word that can be a file name.
std::string UnsafeWord() {
  std::string word;
  for (const char32_t c : {U'\x1b', U'\n', U'\r', U'\x7f', U'\u009b', U'\u061c', U'\u200b',
                           U'\u202e', U'\u2066', U'\ufeff', U'\ufff9', U'\U000e0041'}) {
    AppendUtf8(word, c);
  }
  return word + "x";
}

/// Puts unsafe characters in the place of each text that is no key.
std::shared_ptr<vtq::Namespace> MadeUnsafe(std::shared_ptr<vtq::Namespace> repository) {
  for (const auto& cimClass : repository->GetClasses()) {
    for (const vtq::PropertySchema& property : cimClass->GetSchema().properties) {
      const bool isText = property.type.GetCode() == TCIMValue::TCIMType::kString;
      if (!isText || property.isKey || property.isArray || property.name == "Location") continue;
      // The text is long, so only the first instance has all of it.
      std::string text = EveryUnsafeCharacter();
      for (const auto& instance : cimClass->GetInstances()) {
        instance->SetProperty(property.name, TCIMValue(text), {});
        text = UnsafeWord();
      }
    }
  }
  return repository;
}

/// The invented machine with unsafe characters; the places of its functions are kept.
MachineModel MakeUnsafeMachine() {
  const auto readable = ReadMachine(*MakeTopologyRepository());
  MachineModel machine = ReadMachine(*MadeUnsafe(MakeTopologyRepository()));
  for (std::size_t i = 0; i < machine.functions.size(); ++i) {
    machine.functions[i].place = readable.functions[i].place;
  }
  return machine;
}

void ExpectSafe(const std::function<void(Output& output)>& write) {
  OutputToText output;
  write(output.Get());
  const std::string text = output.Text();
  EXPECT_FALSE(text.empty());
  EXPECT_EQ(FirstUnsafe(text), -1);
}

TEST(UnsafeTextInViews, OfDevicesAndSlots) {
  const MachineModel machine = MakeUnsafeMachine();
  ExpectSafe([&](Output& output) { WriteDevicesTable(output, machine, {}, {}); });
  ExpectSafe([&](Output& output) { WriteDevicesJson(output, machine); });
  ExpectSafe([&](Output& output) { WriteSlotsTable(output, machine, {}, {}); });
  ExpectSafe([&](Output& output) { WriteSlotsJson(output, machine); });
}

TEST(UnsafeTextInViews, OfTheTree) {
  const MachineModel machine = MakeUnsafeMachine();
  const auto tree = MakePortTree(machine);
  ExpectSafe([&](Output& output) { WriteTree(output, tree, machine, {}); });
  ExpectSafe([&](Output& output) { WriteTreeJson(output, tree, machine); });
}

TEST(UnsafeTextInViews, OfOneThing) {
  const auto repository = MadeUnsafe(MakeTopologyRepository());
  for (const char* name : {"PCIEX16_1", "01:00.0", "02:00.0"}) {
    const auto shown = FindNamed(*repository, name);
    ExpectSafe([&](Output& output) { WriteShown(output, *shown, {}); });
    ExpectSafe([&](Output& output) { WriteShownJson(output, *shown); });
  }
}

TEST(UnsafeTextInViews, OfTheOverview) {
  const std::string text = EveryUnsafeCharacter();
  const Overview overview{{}, text, text, MakeUnsafeMachine(), {text}};
  ExpectSafe([&](Output& output) { WriteOverview(output, overview, {}); });
  ExpectSafe([&](Output& output) { WriteOverviewJson(output, overview); });
}

TEST(UnsafeTextInViews, OfChecks) {
  const std::string text = EveryUnsafeCharacter();
  const std::vector<CheckFinding> findings{{"a-code",
                                            Severity::kNote,
                                            "Something.",
                                            "Leave it.",
                                            {{text, text, text, "slot", text, text}}}};
  ExpectSafe([&](Output& output) { WriteFindings(output, findings); });
  ExpectSafe([&](Output& output) { WriteFindingsJson(output, findings); });
}

TEST(UnsafeTextInViews, OfDifferences) {
  const auto before = MakeFixedRepository();
  const auto after = MadeUnsafe(MakeFixedRepository());
  const std::string name = EveryUnsafeCharacter();
  const DiffHeading heading{name, "caf\xe9", {}};
  const InstanceDiff result = CompareInstances({before.get(), true}, {after.get(), true}, {});
  ASSERT_FALSE(result.changes.empty());
  ExpectSafe([&](Output& output) { WriteInstanceDiff(output, heading, result); });
  ExpectSafe([&](Output& output) { WriteInstanceDiffJson(output, heading, result); });
  OutputToText output;
  WriteInstanceDiffJson(output.Get(), heading, result);
  const auto document = nlohmann::json::parse(output.Text());
  EXPECT_EQ(document["before"], name);
  EXPECT_EQ(document["after"], "caf\xc3\xa9");
}

TEST(UnsafeTextInViews, OfDifferencesOfMachines) {
  MachineIdentity identity;
  identity.biosVersion = EveryUnsafeCharacter();
  const auto before = ReadState(*MakeTopologyRepository(), MachineIdentity());
  auto after = ReadState(*MadeUnsafe(MakeTopologyRepository()), identity);
  after.model.slots.clear();
  after.slots.clear();
  for (MachineFunction& function : after.model.functions) function.slot.reset();
  const MachineDiff diff = CompareMachines(before, after, {true, {}});
  const DiffHeading heading{EveryUnsafeCharacter(), "new", {}};
  ASSERT_FALSE(diff.changes.empty());
  ExpectSafe([&](Output& output) { WriteMachineDiff(output, heading, diff, false); });
  ExpectSafe([&](Output& output) { WriteMachineDiffJson(output, heading, diff); });
}

TEST(UnsafeTextInCsv, IsReplacedOnATerminalOnly) {
  const std::vector<std::string> arguments = {"instances", "QZMSG_SystemSlot", "--format", "csv"};
  EXPECT_NE(RunFake("fixed", arguments).out.find("\"J\x01 a designation"), std::string::npos);
  for (const char* pager : {"cat", "tee"}) {
    TerminalRun run{arguments, {{"PCIINFO_PAGER", pager}}};
    run.arguments.insert(run.arguments.end(), {"--only-plugin", FakePluginFile("fixed")});
    const std::string shown = RunOnTerminal(run).out;
    EXPECT_NE(shown.find("\"J? a designation"), std::string::npos) << shown;
    EXPECT_EQ(FirstUnsafe(shown, "\r\n"), -1) << shown;
  }
}

TEST(UnsafeTextInMessages, OfFilesThatAreRead) {
  const vtq::TemporaryDirectory directory;
  const std::string word = UnsafeWord();
  const std::string path = R"("path":"x","properties":{)";
  const std::string archive = directory / "archive";
  MakeArchive(archive, {{"/" + word, "x"}});
  const std::string escaped = nlohmann::json(word).dump();
  const std::vector<std::string> files = {
      archive, directory.Write("class", "{\"instances\":[{\"class\":" + escaped + "}]}"),
      directory.Write("value", R"({"instances":[{"class":"QZMSG_PCIDevice",)" + path +
                                   "\"VendorID\":" + escaped + "}}]}"),
      directory.Write("name",
                      R"({"instances":[{"class":"QZMSG_PCIDevice",)" + path + escaped + ":1}}]}"),
      directory.Write("damaged", "{\"instances\":[\"" + word)};
  for (const std::string& file : files) {
    const RunResult result = RunFake("fixed", {"diff", file, file});
    EXPECT_NE(result.status, 0) << file;
    EXPECT_FALSE(result.err.empty()) << file;
    EXPECT_EQ(FirstUnsafe(result.err), -1) << result.err;
  }
}

TEST(UnsafeTextInMessages, OfEachCommand) {
  const std::string word = UnsafeWord();
  const std::string file = "/nonexistent/" + word;
  for (const std::vector<std::string>& arguments :
       std::vector<std::vector<std::string>>{{word},
                                             {"--" + word},
                                             {"slots", "--format", word},
                                             {"instances", word},
                                             {"show", word},
                                             {"devices", "--vendor", word},
                                             {"devices", "--root", file},
                                             {"devices", "--plugin", file},
                                             {"devices", "--class-file", file},
                                             {"devices", "--log-file", file},
                                             {"devices", "--timeout", word},
                                             {"capture", file},
                                             {"diff", file, word}}) {
    const RunResult result = RunFake("fixed", arguments);
    EXPECT_NE(result.status, 0) << arguments.front();
    EXPECT_FALSE(result.err.empty()) << arguments.front();
    EXPECT_EQ(FirstUnsafe(result.err), -1) << testing::PrintToString(arguments);
  }
}

}  // namespace
}  // namespace pciinfo
