// SPDX-License-Identifier: Apache-2.0

// The program, run by a user who may not read everything: it reports the missing parts once and
// prints the rest.

#include <gmock/gmock.h>

#include <filesystem>

#include "tests/fakes/machine_tree.h"
#include "tests/machines/machine.h"
#include "tests/machines/process.h"

namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class RestrictedUserTest : public testing::Test {
 protected:
  void SetUp() override {
    for (const Machine& machine : OwnMachines()) {
      if (machine.name == "server-peer-groups") Become(machine);
    }
  }

  static void Lock(const std::string& path) {
    ASSERT_TRUE(fs::exists(MachineTree::Real(path))) << path;
    fs::permissions(MachineTree::Real(path), fs::perms::none);
  }

  /// Runs the program without the capability to ignore file permissions.
  static RunResult Run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(),
                     {"setpriv", "--bounding-set=-dac_override,-dac_read_search",
                      "--inh-caps=-dac_override,-dac_read_search", PCIINFO_PROGRAM});
    return RunToEnd(arguments);
  }
};

TEST_F(RestrictedUserTest, UnreadableSmbiosTablesAreNamedOnceAndTheFunctionsAreThere) {
  const std::size_t functions =
      LinesOf(Run({"instances", "QZMSG_PCIDevice", "--format", "jsonl"}).out).size();
  Lock("/sys/firmware/dmi/tables/DMI");
  Lock("/sys/firmware/dmi/tables/smbios_entry_point");
  const RunResult devices = Run({"instances", "QZMSG_PCIDevice", "--format", "jsonl"});
  EXPECT_EQ(LinesOf(devices.out).size(), functions);
  EXPECT_GT(functions, 0U);
  const RunResult all = Run({"instances", "--format", "jsonl"});
  EXPECT_EQ(all.status, 1);
  EXPECT_THAT(LinesOf(all.err),
              ElementsAre(HasSubstr("this user may not read the SMBIOS tables, so no slots are "
                                    "known; run as root")));
}

TEST_F(RestrictedUserTest, AFunctionThatMayNotBeReadIsNamedOnce) {
  const std::vector<std::string> words = {"instances", "QZMSG_PCIDevice", "QZMSG_PCIBridge",
                                          "--format", "jsonl"};
  const RunResult whole = Run(words);
  const std::string first = LinesOf(Run({"devices"}).out).at(1).substr(0, 7);  // "00:00.0"
  Lock("/proc/bus/pci/" + first.substr(0, 2) + "/" + first.substr(3));
  const RunResult result = Run(words);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(LinesOf(result.out).size() + 1, LinesOf(whole.out).size());
  EXPECT_THAT(LinesOf(result.err), ElementsAre(HasSubstr(first.substr(3) + " could not be ")));
}

TEST_F(RestrictedUserTest, ViewsNameAFileThatMayNotBeRead) {
  const RunResult whole = Run({"devices"});
  const std::string file =
      "/sys/bus/pci/devices/0000:" + LinesOf(whole.out).at(1).substr(0, 7) + "/config";
  Lock(file);
  const RunResult result = Run({"devices"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(LinesOf(result.out).size(), LinesOf(whole.out).size());
  EXPECT_THAT(LinesOf(result.err), ElementsAre("pciinfo: VTQ_PCIFunction: " + file +
                                               " could not be read: Permission denied"));
}

TEST_F(RestrictedUserTest, NothingIsWrittenWhereTheUserStands) {
  const fs::path directory = MachineTree::Real("/standing");
  fs::create_directories(directory);
  const fs::path before = fs::current_path();
  fs::current_path(directory);
  Run({"instances"});
  fs::current_path(before);
  EXPECT_TRUE(fs::is_empty(directory));
}

}  // namespace
