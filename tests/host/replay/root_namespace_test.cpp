// SPDX-License-Identifier: Apache-2.0

// Each test runs in a child process, because a process cannot leave the namespaces again.

#include "host/replay/root_namespace.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <functional>

#include "runtime/host_name.h"
#include "tests/host/run_program.h"
#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

/// Whether `holds` is true in a child that has entered namespaces.
bool InNamespaces(const std::function<bool()>& holds) {
  const RunResult child = RunInChild([&] {
    EnterNamespaces();
    return holds() ? 0 : 1;
  });
  return child.status == 0;
}

/// Returns the name that the framework finds for the host name. The framework itself reads it only
/// once per process.
std::string SystemName() {
  std::array<char, 256> host{};
  gethostname(host.data(), host.size());
  std::ifstream hostsFile("/etc/hosts");
  return vtq::QualifiedHostName(host.data(), hostsFile);
}

class RootNamespace : public testing::Test {
 protected:
  std::string HostsFile() const { return directory_.GetPath() + "/hosts"; }

  vtq::TemporaryDirectory directory_;
};

TEST_F(RootNamespace, MountsAreSeenInsideOnly) {
  EXPECT_TRUE(InNamespaces([this] {
    directory_.Write("outside", "");
    MountMemory(directory_.GetPath());
    directory_.Write("inside", "");
    return !std::filesystem::exists(directory_.GetPath() + "/outside");
  }));
  EXPECT_TRUE(std::filesystem::exists(directory_.GetPath() + "/outside"));
  EXPECT_FALSE(std::filesystem::exists(directory_.GetPath() + "/inside"));
}

TEST_F(RootNamespace, ADirectoryCanBeBindMounted) {
  EXPECT_TRUE(InNamespaces([this] {
    const std::string one = directory_.Write("one", "1");
    const std::string two = directory_.Write("two", "2");
    ShowAt(one, two);
    return std::ifstream(two).get() == '1';
  }));
  EXPECT_EQ(std::ifstream(directory_.GetPath() + "/two").get(), '2');
}

TEST_F(RootNamespace, TheUserStaysTheSame) {
  const uid_t user = getuid();
  EXPECT_TRUE(InNamespaces([user] { return getuid() == user && geteuid() == user; }));
}

TEST_F(RootNamespace, TheSystemGetsItsNameInsideOnly) {
  const std::string before = SystemName();
  const std::string longName = std::string(40, 'a') + "." + std::string(40, 'b') + ".example";
  for (const std::string& name : {std::string("box"), std::string("box.example.org"), std::string(),
                                  longName, std::string(64, 'c')}) {
    EXPECT_TRUE(InNamespaces([&] {
      NameSystem(name, HostsFile());
      return SystemName() == name;
    })) << name;
  }
  EXPECT_EQ(SystemName(), before);
}

TEST_F(RootNamespace, ThisMachinesHostsAreNotSeen) {
  EXPECT_TRUE(InNamespaces([this] {
    NameSystem("box", HostsFile());
    return std::filesystem::file_size("/etc/hosts") == 0;
  }));
}

TEST_F(RootNamespace, WithoutPermissionOneLineSaysWhyAndWhatToDo) {
  const RunResult result = RunShell(
      "unshare --user --map-root-user bash -c 'echo 0 >/proc/sys/user/max_user_namespaces; "
      "setpriv --bounding-set=-sys_admin --inh-caps=-sys_admin \"$PCIINFO\" --root /tmp'");
  EXPECT_EQ(result.status, 1);
  const std::vector<std::string> lines = LinesOf(result.err);
  ASSERT_EQ(lines.size(), 1U) << result.err;
  EXPECT_NE(lines[0].find("run as root"), std::string::npos) << lines[0];
  EXPECT_NE(lines[0].find("sysctl kernel."), std::string::npos) << lines[0];
}

}  // namespace
}  // namespace pciinfo
