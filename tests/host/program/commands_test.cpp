// SPDX-License-Identifier: Apache-2.0

// Runs the program on plug-ins with known instances.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/fakes/fewer_if_sanitized.h"
#include "tests/host/run_program.h"
#include "tests/runtime/temporary_directory.h"

namespace {

using nlohmann::json;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::vector<std::string> ClassesIn(const std::string& text) {
  std::vector<std::string> classes;
  const json document = json::parse(text);
  for (const json& instance : document["instances"]) {
    if (classes.empty() || classes.back() != instance["class"])
      classes.push_back(instance["class"]);
  }
  return classes;
}

TEST(Program, DevicesListsThePciFunctions) {
  const RunResult result = RunFake("fixed", {"devices"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  ASSERT_EQ(LinesOf(result.out).size(), 13U);
  EXPECT_THAT(LinesOf(result.out)[6],
              AllOf(StartsWith("01:00.0  VGA compatible controller "),
                    HasSubstr(" NVIDIA GP104 [GeForce GTX 1080] "),
                    EndsWith(" nouveau  x8 of x16, 8 of 16 GT/s  PCIEX16_1")));
}

TEST(Program, WithoutACommandGivesAnOverview) {
  const RunResult result = RunFake("fixed", {});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_THAT(
      LinesOf(result.out),
      AllOf(Contains("PCI       12 functions, 4 of them bridges"),
            Contains("Slots     6 slots: 4 in use, 1 matched to a card"), Contains("On board")));
}

TEST(Program, TheOverviewSaysWhatIsMissing) {
  const RunResult result = RunFake("throwing", {});
  EXPECT_EQ(result.status, 1);
  const std::string why = "VTQ_PCISharedPort: the plug-in failed: port out";
  EXPECT_THAT(LinesOf(result.out), AllOf(Contains("Not shown"), Contains(why)));
  EXPECT_THAT(LinesOf(result.err), Contains("pciinfo: " + why));
}

TEST(Program, ShowFindsAnObjectOrSaysWhatToTry) {
  EXPECT_EQ(RunFake("fixed", {"show", "01:00.0"}).status, 0);
  const RunResult missing = RunFake("fixed", {"show", "Slot 99"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.out, "");
  EXPECT_THAT(missing.err, AllOf(HasSubstr("\"Slot 99\""), HasSubstr("pciinfo slots")));
  EXPECT_EQ(RunFake("fixed", {"show", "/root/cimv2:Nothing.x=1"}).status, 2);
}

TEST(Program, EveryViewHasFilters) {
  const auto lines = [](std::vector<std::string> words) {
    words.insert(words.end(), {"--filter", "class=03,slot=PCIEX16_1"});
    return LinesOf(RunFake("fixed", words).out);
  };
  EXPECT_EQ(lines({"devices"}).size(), 2U);
  EXPECT_EQ(lines({"slots"}).size(), 2U);
  EXPECT_EQ(lines({"tree"}).size(), 3U);
  EXPECT_THAT(lines({}), AllOf(Contains("Filter    class=03,slot=PCIEX16_1"),
                               Contains("PCI       1 function, 0 of them bridges")));
  EXPECT_EQ(lines({"instances", "--format", "jsonl"}).size(), 3U);
}

TEST(Program, AFilterThatMatchesNothingIsTold) {
  for (const std::vector<std::string>& view : std::vector<std::vector<std::string>>{
           {}, {"devices"}, {"slots"}, {"tree"}, {"tree", "--format", "json"}}) {
    std::vector<std::string> words = view;
    words.insert(words.end(), {"--filter", "slot=77"});
    const RunResult result = RunFake("fixed", words);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "pciinfo: no function or slot matches the filter slot=77\n");
  }
}

TEST(Program, TheColumnsOfDevicesCanBeChosen) {
  const RunResult result = RunFake("fixed", {"devices", "--columns", "slot,address,id"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(LinesOf(result.out), AllOf(Contains("SLOT                  ADDRESS  ID"),
                                         Contains("PCIEX16_1             01:00.0  10de:1b80")));
  EXPECT_EQ(RunFake("fixed", {"devices", "--columns", "address", "--columns", "slot,id"}).out,
            RunFake("fixed", {"devices", "--columns", "address,slot,id"}).out);
  EXPECT_EQ(RunFake("fixed", {"devices", "--columns", "colour"}).status, 2);
}

TEST(Program, ColoursInAPipeMustBeRequested) {
  EXPECT_THAT(RunFake("fixed", {"tree"}).out, Not(HasSubstr("\x1B")));
  EXPECT_THAT(RunFake("fixed", {"tree", "--color", "always"}).out, HasSubstr("\x1B[36m"));
}

TEST(Program, InstancesWithoutNamesAreAllThatIsNotOnRequest) {
  const RunResult result = RunFake("fixed", {"instances", "--format", "json"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_THAT(ClassesIn(result.out),
              ElementsAre("QZMSG_PCIDevice", "QZMSG_PCIBridge", "QZMSG_SystemSlot",
                          "QZMSG_SystemBoard", "QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice",
                          "QZMSG_PCIRawData", "VTQ_PCIFunction", "VTQ_PCIFunctionDetails",
                          "VTQ_PCISlot", "VTQ_PCIFunctionInSlot", "VTQ_PCISharedPort"));
}

TEST(Program, AnAssociationIsCompleteWithoutPrintingOtherClasses) {
  const RunResult result =
      RunFake("fixed", {"instances", "QZMSG_OnBoardDevice", "--format", "json"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(ClassesIn(result.out), ElementsAre("QZMSG_OnBoardDevice"));
  EXPECT_EQ(json::parse(result.out)["instances"].size(), 4U);
}

TEST(Program, ClassesArePrintedOnceInTheRequestedOrder) {
  const RunResult result = RunFake("fixed", {"instances", "QZMSG_DeviceInSlot", "QZMSG_SystemSlot",
                                             "QZMSG_DeviceInSlot", "--format", "json"});
  EXPECT_THAT(ClassesIn(result.out), ElementsAre("QZMSG_DeviceInSlot", "QZMSG_SystemSlot"));
  EXPECT_EQ(json::parse(result.out)["instances"].size(), 4U);
}

TEST(Program, EachJsonLineIsAnObject) {
  const RunResult result = RunFake("fixed", {"instances", "QZMSG_PCIBridge", "--format", "jsonl"});
  ASSERT_EQ(LinesOf(result.out).size(), 2U);
  for (const std::string& line : LinesOf(result.out)) {
    EXPECT_EQ(json::parse(line)["class"], "QZMSG_PCIBridge");
  }
}

TEST(Program, TableIsTheDefaultFormat) {
  EXPECT_THAT(RunFake("fixed", {"instances", "QZMSG_SystemBoard"}).out,
              StartsWith("QZMSG_SystemBoard: 1 instance\n"));
}

TEST(Program, SlotsComeAsTableAndAsJson) {
  const RunResult table = RunFake("fixed", {"slots"});
  EXPECT_EQ(table.status, 0);
  EXPECT_THAT(LinesOf(table.out),
              AllOf(Contains(EndsWith("  01:00.0-1  NVIDIA GP104 [GeForce GTX 1080] + audio")),
                    Contains("On board")));
  const json document = json::parse(RunFake("fixed", {"slots", "--format", "json"}).out);
  EXPECT_EQ(document["slots"].size(), 6U);
  EXPECT_EQ(document["onBoard"].size(), 5U);
}

TEST(Program, ClassesNamesThePlugin) {
  const RunResult result = RunFake("fixed", {"classes"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, AllOf(HasSubstr(FakePluginFile("fixed")), HasSubstr("Fake Collector"),
                                HasSubstr("QZMSG_DeviceInSlot : CIM_Realizes")));
}

TEST(Program, InstancesComeInEveryFormat) {
  const auto board = [](const char* format) {
    return RunFake("fixed", {"instances", "QZMSG_SystemBoard", "--format", format}).out;
  };
  EXPECT_THAT(board("csv"), StartsWith("class,path,CreationClassName,"));
  EXPECT_THAT(board("yaml"), StartsWith("instances:\n- class: \"QZMSG_SystemBoard\"\n"));
  EXPECT_THAT(board("mof"), StartsWith("instance of QZMSG_SystemBoard {\n"));
  EXPECT_THAT(board("cim-xml"), StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<CIM "));
}

TEST(Program, TheSchemaNeedsNoPluginAndCollectsNothing) {
  const RunResult mof = RunPciinfo({"schema", "--plugin", "/dev/null"});
  EXPECT_EQ(mof.status, 0);
  EXPECT_EQ(mof.err, "");
  EXPECT_THAT(mof.out, HasSubstr("class QZMSG_PCIDevice : CIM_PCIDevice {"));
  EXPECT_EQ(RunPciinfo({"schema", "--format", "mof"}).out, mof.out);
  const RunResult schema = RunPciinfo({"schema", "--format", "json-schema", "--root", "/nowhere"});
  EXPECT_EQ(schema.status, 0);
  EXPECT_TRUE(json::parse(schema.out).contains("$defs"));
}

TEST(Program, AnUnknownClassIsWrongUsageAndListsTheKnownOnes) {
  const RunResult result = RunFake("fixed", {"instances", "QZMSG_Nothing"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, AllOf(StartsWith("pciinfo: "), HasSubstr("\"QZMSG_Nothing\""),
                                HasSubstr("QZMSG_PCIDevice"), HasSubstr("QZMSG_PCIRawData")));
}

TEST(Program, WrongOptionsAreWrongUsage) {
  for (const char* option : {"--bogus", "--log-level=7", "nonsense"}) {
    const RunResult result = RunPciinfo({option});
    EXPECT_EQ(result.status, 2) << option;
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, AllOf(StartsWith("pciinfo: "), HasSubstr("pciinfo --help")));
  }
  EXPECT_EQ(RunPciinfo({"instances", "--format", "xml"}).status, 2);
}

TEST(Program, TheVersionSaysOnDemandHowCapturesAreKeptAway) {
  const RunResult result = RunPciinfo({"--version", "--verbose"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, testing::StartsWith("pciinfo " PCIINFO_VERSION "\nCaptures "));
  EXPECT_EQ(RunPciinfo({"--verbose"}).status, 2);
}

TEST(Program, HelpAndVersionGoToStandardOutput) {
  EXPECT_EQ(RunPciinfo({"--version"}).out, "pciinfo " PCIINFO_VERSION "\n");
  EXPECT_EQ(RunPciinfo({"slots", "--help"}).status, 0);
  EXPECT_THAT(RunPciinfo({"--help"}).out, HasSubstr("Exit status"));
}

TEST(Program, AMissingPluginIsReported) {
  const RunResult result = RunPciinfo({"--plugin", "/nowhere/none.pi.so"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, AllOf(StartsWith("pciinfo: "), HasSubstr("/nowhere/none.pi.so")));
}

TEST(Program, AFileThatIsNotAPluginIsRefused) {
  const vtq::TemporaryDirectory directory;
  const std::string broken = directory.Write("broken.pi.so", "this is no library\n");
  const RunResult result = RunPciinfo({"--plugin", broken});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr(broken));
  EXPECT_EQ(RunFake("no_plugin", {}).status, 1);
  EXPECT_THAT(RunFake("no_plugin", {}).err, HasSubstr("no_plugin.pi.so"));
}

TEST(Program, AFailedInitialisationIsReported) {
  const RunResult result = RunFake("uninitialisable", {});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, AllOf(HasSubstr("uninitialisable.pi.so"), HasSubstr("no fuel")));
}

TEST(Program, AnExceptionLosesOnlyItsClass) {
  const RunResult result = RunFake("throwing", InventoryWords({"--format", "json"}));
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(LinesOf(result.err),
              ElementsAre("pciinfo: QZMSG_PCIBridge: the plug-in failed: bridge out",
                          "pciinfo: QZMSG_SystemBoard: the plug-in failed and did not say why"));
  EXPECT_THAT(ClassesIn(result.out), ElementsAre("QZMSG_PCIDevice", "QZMSG_SystemSlot",
                                                 "QZMSG_DeviceInSlot", "QZMSG_PCIRawData"));
}

TEST(Program, TroublesAreReportedOnceAtTheEnd) {
  const RunResult result = RunFake("grumbling", InventoryWords());
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(LinesOf(result.err),
              ElementsAre("pciinfo: QZMSG_PCIDevice: this user may not read the SMBIOS tables, so "
                          "no slots are known; run as root",
                          "pciinfo: QZMSG_PCIDevice: /proc/bus/pci/00/1e.0 could not be opened; "
                          "this function is missing",
                          AllOf(StartsWith("pciinfo: QZMSG_PCIRawData: the class could not be "
                                           "collected: "),
                                HasSubstr("no-such-listing-tool"))));
}

TEST(Program, ViewsReportWhyPlacesAreUnknown) {
  const char* const why =
      "pciinfo: VTQ_PCIFunction: this user may not read the SMBIOS tables, so only the slots that "
      "the kernel shows are known; run as root";
  for (const char* view : {"devices", "slots", "tree"}) {
    EXPECT_THAT(LinesOf(RunFake("grumbling", {view}).err),
                ElementsAre(why, "pciinfo: VTQ_PCIFunction: a fan has stopped"));
  }
}

TEST(Program, AMachineWithoutSmbiosTablesIsNotAnError) {
  const RunResult result = RunFake("slotless", {"slots"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(
      LinesOf(result.err),
      ElementsAre(StartsWith("pciinfo: this machine has no SMBIOS tables, so only the slots ")));
  EXPECT_THAT(result.out, Not(HasSubstr("SLOT ")));
  EXPECT_THAT(LinesOf(result.out), Contains("On board"));
}

TEST(Program, ALogLevelShowsTheRecordsThemselves) {
  const std::string progress = "0 Exiting correlateDeviceAndSlot";
  const RunResult errors =
      RunFake("grumbling", {"instances", "QZMSG_PCIDevice", "QZMSG_PCIBridge", "--log-level", "0"});
  EXPECT_THAT(LinesOf(errors.err), Contains(progress).Times(4));
  EXPECT_THAT(errors.err, Not(HasSubstr("fake: Init")));
  EXPECT_THAT(LinesOf(RunFake("grumbling", {"instances", "QZMSG_PCIDevice", "QZMSG_PCIBridge",
                                            "--log-level", "3"})
                          .err),
              AllOf(Contains("3 fake: Init"), Contains("3 fake: PrepareForUnload")));
  EXPECT_THAT(RunFake("grumbling", {"instances"}).err, Not(HasSubstr("correlateDeviceAndSlot")));
}

TEST(Program, TheLogFileHasEveryRecord) {
  const vtq::TemporaryDirectory directory;
  RunFake("grumbling",
          {"instances", "QZMSG_PCIDevice", "QZMSG_PCIBridge", "--log-file", directory / "log"});
  EXPECT_THAT(
      LinesOf(directory.Read("log")),
      ElementsAre("3 fake: Init", "3 fake: GetData QZMSG_PCIDevice",
                  "0 Unable to open SMBIOS library error: 4", "0 Exiting correlateDeviceAndSlot",
                  "0 Exiting correlateDeviceAndSlot", "2 Could not open PCI description file.",
                  "2 Could not open PCI file./proc/bus/pci/00/1e.0",
                  "3 fake: GetData QZMSG_PCIBridge", "0 Unable to open SMBIOS library error: 4",
                  "0 Exiting correlateDeviceAndSlot", "0 Exiting correlateDeviceAndSlot",
                  "2 Could not open PCI description file.",
                  "2 Could not open PCI file./proc/bus/pci/00/1e.0", "3 fake: DeInit",
                  "3 fake: PrepareForUnload"));
}

TEST(Program, ALogFileThatCannotBeOpenedIsAnError) {
  const RunResult result = RunFake("fixed", {"--log-file", "/nowhere/log"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("/nowhere/log"));
}

TEST(Program, ALogFileThatCannotBeWrittenIsAnErrorAndCostsNoOutput) {
  const RunResult result = RunFake("fixed", {"devices", "--log-file", "/dev/full"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, RunFake("fixed", {"devices"}).out);
  EXPECT_THAT(LinesOf(result.err),
              ElementsAre("pciinfo: cannot write the log file /dev/full: No space left on device"));
}

TEST(Program, ContractViolationsAreOnlyWarnings) {
  const RunResult result = RunFake("untidy", {"instances", "QZMSG_SystemBoard"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.err, StartsWith("pciinfo: warning: "));
}

TEST(Program, AFullDiskIsReported) {
  for (const char* command :
       {"", "devices", "slots", "tree", "show 01:00.0", "instances --format json",
        "instances --format cim-xml", "classes", "schema"}) {
    const RunResult result = RunShell(std::string("$PCIINFO --only-plugin ${PLUGINS}fixed.pi.so ") +
                                      command + " >/dev/full");
    EXPECT_EQ(result.status, 1) << command;
    EXPECT_EQ(result.err, "pciinfo: cannot write the output: No space left on device\n");
  }
  EXPECT_EQ(RunShell("$PCIINFO --help >/dev/full").status, 1);
}

TEST(Program, AClosedStandardOutputIsReported) {
  const RunResult result = RunShell("$PCIINFO --only-plugin ${PLUGINS}fixed.pi.so >&-");
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, StartsWith("pciinfo: cannot write the output: "));
}

TEST(Program, AClosedPipeEndsItQuietly) {
  for (const char* format : {"table", "json", "jsonl", "yaml", "mof", "cim-xml"}) {
    const RunResult result = RunShell(
        std::string(
            "$PCIINFO --only-plugin ${PLUGINS}long_listing.pi.so instances QZMSG_PCIRawData "
            "--format ") +
        format + " | head -c 10 >/dev/null; exit ${PIPESTATUS[0]}");
    EXPECT_EQ(result.status, 141) << format;
    EXPECT_EQ(result.err, "");
  }
}

TEST(Program, ALongListingIsNotWrittenAsCsv) {
  const RunResult result =
      RunFake("long_listing", {"instances", "QZMSG_PCIRawData", "--format", "csv"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, AllOf(HasSubstr("QZMSG_PCIRawData does not fit into CSV: its RawResult"),
                                HasSubstr("--format jsonl")));
}

TEST(Program, ALongListingArrivesInFull) {
  const RunResult result =
      RunFake("long_listing", {"instances", "QZMSG_PCIRawData", "--format", "jsonl"});
  const json lines = json::parse(result.out)["properties"]["RawResult"];
  constexpr unsigned kLines = FewerIfSanitized(250000);
  ASSERT_EQ(lines.size(), kLines);
  EXPECT_EQ(lines[kLines - 1], "line " + std::to_string(kLines - 1));
}

TEST(Program, SeveralPluginsFillOneRepository) {
  // Links in a directory without class files: both plug-ins are asked for the classes of the
  // option.
  const vtq::TemporaryDirectory links;
  for (const std::string name : {"throwing", "fixed"}) {
    std::filesystem::create_symlink(FakePluginFile(name), links / (name + ".pi.so"));
  }
  const RunResult result = RunPciinfo({"instances", "QZMSG_PCIBridge", "--format", "json",
                                       "--only-plugin", links / "throwing.pi.so", "--plugin",
                                       links / "fixed.pi.so", "--class-file", PCI_CLASS_FILE});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(json::parse(result.out)["instances"].size(), 2U);
}

}  // namespace
