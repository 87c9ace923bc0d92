// SPDX-License-Identifier: Apache-2.0
#include "host/cli/options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pciinfo {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::variant<Options, Answer> Parse(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "pciinfo");
  return ParseOptions(static_cast<int>(arguments.size()), arguments.data());
}

Options Parsed(const std::vector<const char*>& arguments) {
  const auto result = Parse(arguments);
  if (const Answer* answer = std::get_if<Answer>(&result)) {
    ADD_FAILURE() << answer->text;
    return {};
  }
  return std::get<Options>(result);
}

std::string Error(const std::vector<const char*>& arguments) {
  const auto result = Parse(arguments);
  const Answer* answer = std::get_if<Answer>(&result);
  return answer != nullptr && answer->isError ? answer->text : "no error";
}

TEST(Options, WithoutArgumentsTheOverviewIsShown) {
  const Options options = Parsed({});
  EXPECT_EQ(options.command, Command::kOverview);
  EXPECT_EQ(options.format, "table");
  EXPECT_THAT(options.plugins.added, IsEmpty());
  EXPECT_THAT(options.plugins.only, IsEmpty());
  EXPECT_EQ(options.logFile, "");
  EXPECT_FALSE(options.logLevel.has_value());
}

TEST(Options, InstancesTakesClassesAndAFormat) {
  const Options options = Parsed({"instances", "A", "--format", "jsonl", "B"});
  EXPECT_EQ(options.command, Command::kInstances);
  EXPECT_THAT(options.classes, ElementsAre("A", "B"));
  EXPECT_EQ(options.format, "jsonl");
}

TEST(Options, OtherCommands) {
  EXPECT_EQ(Parsed({"classes"}).command, Command::kClasses);
  EXPECT_EQ(Parsed({"slots", "--format=json"}).command, Command::kSlots);
}

TEST(Options, ShowTakesAName) {
  EXPECT_EQ(Parsed({"show", "Slot 3"}).command, Command::kShow);
  EXPECT_EQ(Parsed({"show", "Slot 3"}).target, "Slot 3");
  EXPECT_THAT(Error({"show"}), HasSubstr("NAME"));
}

TEST(Options, TreeCanShowAll) {
  EXPECT_EQ(Parsed({"tree"}).command, Command::kTree);
  EXPECT_FALSE(Parsed({"tree"}).showAll);
  EXPECT_TRUE(Parsed({"tree", "--all"}).showAll);
  EXPECT_EQ(Parsed({"tree", "--format", "svg"}).format, "svg");
  EXPECT_EQ(Parsed({"tree", "--format", "dot"}).format, "dot");
  EXPECT_EQ(Parsed({"devices", "--format", "json"}).format, "json");
}

TEST(Options, ReportTakesAFileAndACapture) {
  EXPECT_EQ(Parsed({"report", "page.html"}).command, Command::kReport);
  EXPECT_EQ(Parsed({"report", "page.html", "a.tar"}).reportFile, "page.html");
  EXPECT_THAT(Parsed({"report", "page.html", "a.tar", "b"}).reportCaptures,
              ElementsAre("a.tar", "b"));
  EXPECT_THAT(Error({"report"}), HasSubstr("FILE"));
  EXPECT_EQ(Parsed({"store", "i.db"}).command, Command::kStore);
  EXPECT_EQ(Parsed({"store", "i.db", "a.tar"}).storeTarget, "i.db");
  EXPECT_THAT(Parsed({"store", "i.db", "a.tar", "-", "--redact"}).storeSources,
              testing::ElementsAre("a.tar", "-"));
  EXPECT_TRUE(Parsed({"store", "i.db", "--redact"}).redact);
  EXPECT_THAT(Error({"store"}), HasSubstr("TARGET"));
  EXPECT_THAT(Error({"report", "page.html", "--filter", "class=02"}), HasSubstr("--filter"));
}

TEST(Options, ColoursAndPagerAreForTheTerminalToDecide) {
  EXPECT_EQ(Parsed({}).terminal.color, "auto");
  EXPECT_TRUE(Parsed({}).terminal.pager);
  EXPECT_FALSE(Parsed({"slots", "--no-pager"}).terminal.pager);
  EXPECT_EQ(Parsed({"--color", "never", "tree"}).terminal.color, "never");
  EXPECT_THAT(Error({"--color", "pink"}), HasSubstr("pink"));
}

TEST(Options, FiltersMayPrecedeOrFollowTheCommand) {
  EXPECT_TRUE(Parsed({}).filter.IsEmpty());
  EXPECT_FALSE(Parsed({"--filter", "class=02", "slots"}).filter.IsEmpty());
  EXPECT_FALSE(Parsed({"devices", "--filter", "class=02", "--filter=slot=3"}).filter.IsEmpty());
  EXPECT_NE(Error({"show", "00:00.0", "--filter", "class=02"}), "no error");
  EXPECT_THAT(Parsed({"instances", "--filter", "class=02", "A"}).classes, ElementsAre("A"));
}

TEST(Options, InvalidFiltersAreRefused) {
  EXPECT_THAT(Error({"--filter", "colour=red"}), HasSubstr("colour=red"));
  EXPECT_THAT(Error({"classes", "--filter", "class=02"}), HasSubstr("--filter"));
  EXPECT_THAT(Error({"capture", "x", "--filter", "class=02"}), HasSubstr("--filter"));
}

TEST(Options, SchemaHasFormatsOfItsOwn) {
  EXPECT_EQ(Parsed({"schema"}).command, Command::kSchema);
  EXPECT_EQ(Parsed({"schema"}).schemaFormat, "mof");
  EXPECT_EQ(Parsed({"schema", "--format", "json-schema"}).schemaFormat, "json-schema");
  EXPECT_THAT(Error({"schema", "--format", "table"}), HasSubstr("--format"));
  EXPECT_THAT(Error({"instances", "--format", "json-schema"}), HasSubstr("--format"));
  EXPECT_EQ(Parsed({"instances", "--format", "cim-xml"}).format, "cim-xml");
}

TEST(Options, CaptureTakesAFile) {
  const Options options = Parsed({"capture", "--redact", "box.tar.zst"});
  EXPECT_EQ(options.command, Command::kCapture);
  EXPECT_EQ(options.captureFile, "box.tar.zst");
  EXPECT_TRUE(options.redact);
  EXPECT_FALSE(Parsed({"capture", "-"}).redact);
  EXPECT_EQ(Parsed({"capture", "-"}).captureFile, "-");
  EXPECT_THAT(Error({"capture"}), HasSubstr("FILE"));
}

TEST(Options, ARootGoesWithEveryCommand) {
  EXPECT_EQ(Parsed({}).root, "");
  EXPECT_EQ(Parsed({"--root", "box", "slots"}).root, "box");
  EXPECT_EQ(Parsed({"capture", "x", "--root", "-"}).root, "-");
  EXPECT_FALSE(Parsed({"--root", "box"}).liveCommands);
  EXPECT_TRUE(Parsed({"instances", "--live-commands", "--root=box"}).liveCommands);
  EXPECT_THAT(Error({"--live-commands"}), HasSubstr("--root"));
  EXPECT_THAT(Error({"--root", ""}), HasSubstr("--root"));
}

TEST(Options, GlobalOptionsStandBeforeTheCommand) {
  const Options options = Parsed(
      {"--plugin", "x", "--log-file", "f", "--log-level", "4", "--plugin", "y", "instances", "A"});
  EXPECT_THAT(options.plugins.added, ElementsAre("x", "y"));
  EXPECT_EQ(options.logFile, "f");
  EXPECT_EQ(options.logLevel, 4);
  EXPECT_THAT(options.classes, ElementsAre("A"));
}

TEST(Options, GlobalOptionsStandBehindTheCommand) {
  const Options options =
      Parsed({"instances", "--plugin", "x", "A", "--log-level=0", "--plugin=y", "B"});
  EXPECT_THAT(options.plugins.added, ElementsAre("x", "y"));
  EXPECT_EQ(options.logLevel, 0);
  EXPECT_THAT(options.classes, ElementsAre("A", "B"));
}

TEST(Options, GlobalOptionsStandOnBothSides) {
  EXPECT_THAT(Parsed({"--plugin", "x", "slots", "--plugin", "y"}).plugins.added,
              ElementsAre("x", "y"));
}

TEST(Options, OnlyPluginAndClassFileMayBeGivenMoreThanOnce) {
  const Options options = Parsed({"--only-plugin", "x", "slots", "--only-plugin", "y",
                                  "--class-file", "a", "--class-file", "b"});
  EXPECT_THAT(options.plugins.only, ElementsAre("x", "y"));
  EXPECT_THAT(options.plugins.added, IsEmpty());
  EXPECT_THAT(options.plugins.classFiles, ElementsAre("a", "b"));
}

TEST(Options, AnUnknownFormatIsAnErrorThatListsTheKnownOnes) {
  EXPECT_THAT(Error({"instances", "--format", "xml"}),
              testing::AllOf(HasSubstr("--format"), HasSubstr("xml"), HasSubstr("table"),
                             HasSubstr("jsonl")));
  EXPECT_THAT(Error({"tree", "--format", "jsonl"}), HasSubstr("jsonl"));
}

TEST(Options, AFormatOfOtherCommandsIsAnErrorThatNamesThem) {
  EXPECT_EQ(
      Error({"show", "1", "--format", "csv"}),
      "--format: this command has no csv: use json, or \"pciinfo devices --format csv\" for a "
      "list of the functions (see \"pciinfo --help\")");
  EXPECT_THAT(Error({"tree", "--format", "csv"}), HasSubstr("use json, or"));
  EXPECT_THAT(Error({"devices", "--format", "mof"}),
              HasSubstr("\"pciinfo instances VTQ_PCIFunction --format mof\" for instances"));
}

TEST(Options, ColumnsAreForTableAndCsv) {
  EXPECT_THAT(Parsed({"slots", "--columns", "slot,card", "--format", "csv"}).columns,
              ElementsAre("slot", "card"));
  EXPECT_THAT(Error({"devices", "--columns", "id", "--format", "yaml"}),
              HasSubstr("--columns cannot be used with yaml"));
  EXPECT_THAT(Error({"slots", "--columns", "id"}), HasSubstr("id not in {slot,"));
}

TEST(Options, WrongCommandLinesAreErrorsThatNameTheCulprit) {
  EXPECT_THAT(Error({"--bogus"}), HasSubstr("--bogus"));
  EXPECT_THAT(Error({"instances", "--bogus"}), HasSubstr("--bogus"));
  EXPECT_THAT(Error({"nonsense"}), HasSubstr("nonsense"));
  EXPECT_THAT(Error({"slots", "surplus"}), HasSubstr("surplus"));
  EXPECT_THAT(Error({"--log-level", "5"}), HasSubstr("--log-level"));
  EXPECT_THAT(Error({"--log-level", "-1"}), HasSubstr("--log-level"));
  EXPECT_THAT(Error({"--log-level", "much"}), HasSubstr("--log-level"));
  EXPECT_THAT(Error({"--plugin"}), HasSubstr("--plugin"));
  EXPECT_NE(Error({"slots", "classes"}), "no error");
}

TEST(Options, ErrorsAreOneLine) {
  EXPECT_EQ(Error({"--bogus"}).find('\n'), std::string::npos);
  EXPECT_EQ(Error({"instances", "--format", "xml"}).find('\n'), std::string::npos);
}

TEST(Options, EveryCommandHasItsHelp) {
  for (const char* command :
       {"instances", "classes", "slots", "devices", "tree", "show", "capture", "report", "store"}) {
    const auto result = Parse({command, "--help"});
    const Answer* answer = std::get_if<Answer>(&result);
    ASSERT_NE(answer, nullptr);
    EXPECT_FALSE(answer->isError);
    EXPECT_THAT(answer->text, HasSubstr(std::string("pciinfo ") + command));
  }
}

TEST(Options, HelpNamesCommandsOptionsAndExitStatuses) {
  const auto result = Parse({"--help"});
  const std::string& help = std::get<Answer>(result).text;
  for (const char* word : {"instances", "classes", "slots", "--plugin", "--log-file", "--log-level",
                           "--version", "Exit status", "141"}) {
    EXPECT_THAT(help, HasSubstr(word));
  }
}

TEST(Options, LimitsAreTenMinutesUnlessGiven) {
  EXPECT_EQ(Parsed({}).timeout, 600);
  EXPECT_EQ(Parsed({}).memoryLimit, kDefaultMemoryLimit);
  const Options options = Parsed({"slots", "--timeout", "2.5", "--memory-limit", "128"});
  EXPECT_EQ(options.timeout, 2.5);
  EXPECT_EQ(options.memoryLimit, 128U);
  EXPECT_EQ(Parsed({"--memory-limit", "0"}).memoryLimit, 0U);
}

TEST(Options, InvalidLimitsAreRefused) {
  for (const char* time : {"0", "-1", "0.05", "soon", "2s", "1e9", "nan", "-nan", "inf", "-inf"}) {
    const std::string error = Error({"--timeout", time});
    EXPECT_THAT(error, HasSubstr("--timeout: must be 0.1 to 1000000 (seconds)")) << time;
  }
  for (const char* memory : {"1", "-128", "2G", "99999999999999"}) {
    EXPECT_THAT(Error({"--memory-limit", memory}), HasSubstr("at least 128 (MiB)")) << memory;
  }
}

TEST(Options, VersionIsTheProjectsVersion) {
  const auto result = Parse({"--version"});
  EXPECT_EQ(std::get<Answer>(result).text, "pciinfo " PCIINFO_VERSION "\n");
}

}  // namespace
}  // namespace pciinfo
