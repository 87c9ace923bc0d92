// --plugin and --only-plugin, as the program takes them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/host/run_program.h"
#include "tests/host/temporary_file.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

TEST(PluginOptions, APluginIsAddedToTheInstalledOnes) {
  const TemporaryFile fan("added_fan.pi.so");
  const TemporaryFile classes("added_fan.classes.json");
  std::filesystem::create_symlink(FakePluginFile("fixed"), fan.Path());
  std::ofstream(classes.Path())
      << R"({"classes":[{"name":"A_Fan","properties":[{"name":"Id","type":"string","key":true}]}]})";
  const RunResult added = RunPciinfo({"classes", "--plugin", fan.Path()});
  EXPECT_EQ(added.status, 0) << added.err;
  EXPECT_THAT(added.out, HasSubstr("PCI Information Collector"));
  EXPECT_THAT(added.out, HasSubstr(fan.Path() + "\nName:              Fake Collector\n"));
  EXPECT_THAT(added.out, HasSubstr("\nClasses:\nA_Fan\n"));
  const RunResult devices = RunPciinfo({"devices", "--plugin", fan.Path()});
  EXPECT_EQ(devices.out, RunPciinfo({"devices"}).out);
  const RunResult all = RunPciinfo({"instances", "--plugin", fan.Path()});
  EXPECT_THAT(all.out, AllOf(HasSubstr("QZMSG_PCIDevice: "), HasSubstr("A_Fan: 0 instances")));
  EXPECT_EQ(RunPciinfo({"instances", "--only-plugin", fan.Path()}).out, "A_Fan: 0 instances\n");
}

TEST(PluginOptions, CommandsSayWhichClassesNoPluginServes) {
  const TemporaryFile fan("lonely_fan.pi.so");
  const TemporaryFile classes("lonely_fan.classes.json");
  std::filesystem::create_symlink(FakePluginFile("fixed"), fan.Path());
  std::ofstream(classes.Path())
      << R"({"classes":[{"name":"A_Fan","properties":[{"name":"Id","type":"string","key":true}]}]})";
  for (const std::vector<std::string>& command :
       std::vector<std::vector<std::string>>{{},
                                             {"devices"},
                                             {"slots"},
                                             {"tree"},
                                             {"check"},
                                             {"show", "00:00.0"},
                                             {"instances", "--filter", "class=02"}}) {
    std::vector<std::string> arguments = command;
    arguments.insert(arguments.end(), {"--only-plugin", fan.Path()});
    const RunResult result = RunPciinfo(arguments);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, AllOf(HasSubstr("no loaded plug-in serves: QZMSG_PCIDevice, "),
                                  HasSubstr("leave out --only-plugin")));
  }
  EXPECT_EQ(RunPciinfo({"diff", "live", "/dev/null", "--only-plugin", fan.Path()}).status, 2);
}

TEST(PluginOptions, APluginWithoutDeclaredClassesIsWarnedOf) {
  const TemporaryFile bare("undeclared.pi.so");
  std::filesystem::create_symlink(FakePluginFile("fixed"), bare.Path());
  const RunResult added = RunPciinfo({"classes", "--plugin", bare.Path()});
  EXPECT_EQ(added.status, 0);
  EXPECT_THAT(added.err, StartsWith("pciinfo: warning: nothing is asked of the plug-in " +
                                    bare.Path() + ": its classes are not declared"));
  const RunResult only = RunPciinfo({"devices", "--only-plugin", bare.Path()});
  EXPECT_EQ(only.status, 1);
  EXPECT_THAT(only.err,
              HasSubstr("no class is declared: put undeclared.classes.json beside the plug-in"));
}

}  // namespace
