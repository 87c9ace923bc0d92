// SPDX-License-Identifier: Apache-2.0

// Each test runs in a child process, because a process cannot leave the namespaces again.

#include "host/replay/root_namespace.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <functional>

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

class RootNamespace : public testing::Test {
 protected:
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

TEST_F(RootNamespace, TheHostNameIsHiddenInsideOnly) {
  const auto hostName = [] {
    std::array<char, 256> name{};
    gethostname(name.data(), name.size());
    return std::string(name.data());
  };
  const std::string before = hostName();
  EXPECT_TRUE(InNamespaces([&] {
    HideSystemName();
    return hostName().empty();
  }));
  EXPECT_EQ(hostName(), before);
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
