// SPDX-License-Identifier: Apache-2.0
#include "host/replay/root_namespace.h"

#include <fmt/format.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace pciinfo {
namespace {

constexpr int kNamespaces = CLONE_NEWNS | CLONE_NEWUTS;
constexpr const char* kAppArmorSwitch = "/proc/sys/kernel/apparmor_restrict_unprivileged_userns";

void Require(bool done, const char* what) {
  if (done) return;
  const int error = errno;
  std::error_code ignored;
  const bool confined = std::filesystem::exists(kAppArmorSwitch, ignored);
  throw std::runtime_error(fmt::format(
      "--root needs namespaces, and the kernel does not allow this user to {} "
      "({}); run as root, or allow it: sysctl kernel.{}",
      what, std::strerror(error),
      confined ? "apparmor_restrict_unprivileged_userns=0" : "unprivileged_userns_clone=1"));
}

void WriteText(const std::string& file, const std::string& text) {
  std::ofstream stream(file);
  stream << text << std::flush;
  Require(stream.good(), "set up a user namespace");
}

std::string SameNumber(unsigned number) { return fmt::format("{} {} 1", number, number); }

void EnterUserNamespace() {
  const uid_t user = geteuid();
  const gid_t group = getegid();
  Require(unshare(CLONE_NEWUSER | kNamespaces) == 0, "make a user namespace");
  WriteText("/proc/self/setgroups", "deny");
  WriteText("/proc/self/uid_map", SameNumber(user));
  WriteText("/proc/self/gid_map", SameNumber(group));
}

}  // namespace

void EnterNamespaces() {
  if (unshare(kNamespaces) != 0) EnterUserNamespace();
  Require(mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "make mounts private");
}

void MountMemory(const std::string& place, const std::string& limits) {
  const std::string options = "mode=0755" + (limits.empty() ? "" : "," + limits);
  Require(mount("tmpfs", place.c_str(), "tmpfs", MS_NOSUID | MS_NODEV, options.c_str()) == 0,
          "mount a file system in memory");
}

void ShowAt(const std::string& from, const std::string& place) {
  Require(mount(from.c_str(), place.c_str(), nullptr, MS_BIND | MS_REC, nullptr) == 0,
          "bind-mount a directory");
}

void HideSystemName() { Require(sethostname("", 0) == 0, "set a host name"); }

}  // namespace pciinfo
