// SPDX-License-Identifier: Apache-2.0

// --plugin and --only-plugin, as the program takes them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/host/run_program.h"
#include "tests/runtime/temporary_directory.h"

namespace {

constexpr const char* kFanClasses =
    R"({"classes":[{"name":"A_Fan","properties":[{"name":"Id","type":"string","key":true}]}]})";

/// Makes a link to the plug-in "fixed" in the directory and returns its path.
std::string LinkFixed(const vtq::TemporaryDirectory& directory, const std::string& name) {
  std::filesystem::create_symlink(FakePluginFile("fixed"), directory / name);
  return directory / name;
}

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

TEST(PluginOptions, APluginIsAddedToTheInstalledOnes) {
  const vtq::TemporaryDirectory directory;
  const std::string fan = LinkFixed(directory, "fan.pi.so");
  directory.Write("fan.classes.json", kFanClasses);
  const RunResult added = RunPciinfo({"classes", "--plugin", fan});
  EXPECT_EQ(added.status, 0) << added.err;
  EXPECT_THAT(added.out, HasSubstr("PCI Information Collector"));
  EXPECT_THAT(added.out, HasSubstr(fan + "\nName:              Fake Collector\n"));
  EXPECT_THAT(added.out, HasSubstr("\nClasses:\nA_Fan\n"));
  const RunResult devices = RunPciinfo({"devices", "--plugin", fan});
  EXPECT_EQ(devices.out, RunPciinfo({"devices"}).out);
  const RunResult all = RunPciinfo({"instances", "--plugin", fan});
  EXPECT_THAT(all.out, AllOf(HasSubstr("QZMSG_PCIDevice: "), HasSubstr("A_Fan: 0 instances")));
  EXPECT_EQ(RunPciinfo({"instances", "--only-plugin", fan}).out, "A_Fan: 0 instances\n");
}

TEST(PluginOptions, APluginIsLoadedOnlyForItsClasses) {
  const vtq::TemporaryDirectory directory;
  const std::string broken = directory / "fan.pi.so";
  std::filesystem::create_symlink(FakePluginFile("uninitialisable"), broken);
  directory.Write("fan.classes.json", kFanClasses);
  for (const char* command : {"devices", "slots", "tree", "check"}) {
    EXPECT_EQ(RunPciinfo({command, "--plugin", broken}).out, RunPciinfo({command}).out) << command;
  }
  EXPECT_EQ(RunPciinfo({"instances", "QZMSG_PCIBridge", "--plugin", broken}).status, 0);
  for (const char* what : {"A_Fan", "--all"}) {
    EXPECT_THAT(RunPciinfo({"instances", what, "--plugin", broken}).err, HasSubstr(broken)) << what;
  }
  EXPECT_EQ(RunPciinfo({"classes", "--plugin", broken}).status, 1);
}

TEST(PluginOptions, CommandsSayWhichClassesNoPluginServes) {
  const vtq::TemporaryDirectory directory;
  const std::string fan = LinkFixed(directory, "fan.pi.so");
  directory.Write("fan.classes.json", kFanClasses);
  const auto expectMissing = [&](std::vector<std::string> words, const std::string& firstClass) {
    words.insert(words.end(), {"--only-plugin", fan});
    const RunResult result = RunPciinfo(words);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, AllOf(HasSubstr("no loaded plug-in serves: " + firstClass + ", "),
                                  HasSubstr("leave out --only-plugin")));
  };
  expectMissing({}, "VTQ_PCIFunction");
  for (const char* view : {"devices", "slots", "tree"}) expectMissing({view}, "VTQ_PCIFunction");
  expectMissing({"show", "00:00.0"}, "VTQ_PCIFunction");
  expectMissing({"check"}, "VTQ_PCIFunction");
  expectMissing({"check", "--classes"}, "QZMSG_PCIDevice");
  expectMissing({"instances", "--filter", "class=02"}, "QZMSG_PCIDevice");
  const RunResult diff = RunPciinfo({"diff", "live", "/", "--only-plugin", fan});
  EXPECT_EQ(diff.status, 2);
  EXPECT_THAT(diff.err, HasSubstr("VTQ_PCIFunction"));
}

TEST(PluginOptions, APluginWithoutDeclaredClassesIsWarnedOf) {
  const vtq::TemporaryDirectory directory;
  const std::string bare = LinkFixed(directory, "undeclared.pi.so");
  const RunResult added = RunPciinfo({"classes", "--plugin", bare});
  EXPECT_EQ(added.status, 0);
  EXPECT_THAT(added.err, StartsWith("pciinfo: warning: nothing is asked of the plug-in " + bare +
                                    ": its classes are not declared"));
  const RunResult only = RunPciinfo({"devices", "--only-plugin", bare});
  EXPECT_EQ(only.status, 1);
  EXPECT_THAT(only.err,
              HasSubstr("no class is declared: put undeclared.classes.json beside the plug-in"));
}

}  // namespace
