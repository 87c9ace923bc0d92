// SPDX-License-Identifier: Apache-2.0
#include "host/replay/hidden_machine.h"

#include <sys/mount.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "host/replay/root_namespace.h"
#include "host/replay/root_unpack.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

// What tells of this machine or reaches it. Links (/lib/modules may stand below /usr) are followed.
constexpr std::array kHidden = {"/etc", "/dev", "/run", "/boot", "/lib/modules"};

/// What programs need of these places whatever machine they are shown. The database of udev has
/// names of functions.
constexpr std::array kNeeded = {"/etc/ld.so.cache", "/etc/alternatives", "/etc/udev/hwdb.bin",
                                "/dev/null",        "/dev/zero",         "/dev/full",
                                "/dev/random",      "/dev/urandom"};

bool Exists(const fs::path& path) {
  std::error_code ignored;
  return fs::exists(path, ignored);
}

fs::path InTree(const fs::path& tree, const fs::path& place) {
  return tree / place.relative_path();
}

bool IsHidden(const std::string& path) {
  return std::any_of(kHidden.begin(), kHidden.end(),
                     [&path](const std::string& place) { return path.starts_with(place + "/"); });
}

/// Shows a file or directory of this machine in the tree.
void Keep(const fs::path& tree, const fs::path& path) {
  if (!Exists(path)) return;
  const fs::path place = InTree(tree, path);
  if (fs::is_directory(path)) {
    fs::create_directories(place);
  } else {
    fs::create_directories(place.parent_path());
    std::ofstream(place).flush();  // something to mount over
  }
  ShowAt(path, place);
}

/// A plug-in's libraries often stand beside it.
void KeepDirectories(const fs::path& tree, const std::vector<std::string>& files) {
  for (const std::string& file : files) {
    const fs::path directory = fs::absolute(file).parent_path();
    if (IsHidden(directory) && !Exists(InTree(tree, directory))) Keep(tree, directory);
  }
}

void LinkDescriptors(const fs::path& tree) {
  fs::create_symlink("/proc/self/fd", tree / "dev/fd");
  fs::create_symlink("/proc/self/fd/0", tree / "dev/stdin");
  fs::create_symlink("/proc/self/fd/1", tree / "dev/stdout");
  fs::create_symlink("/proc/self/fd/2", tree / "dev/stderr");
}

/// The links in /proc that lead to a process's own entries. The sanitizers' leak check names its
/// process by number.
std::vector<std::string> OwnEntries() {
#ifdef PCIINFO_SANITIZED
  return {"self", "thread-self", std::to_string(getpid())};
#else
  return {"self", "thread-self"};
#endif
}

/// Programs look at their own entries of /proc. Only root may mount a /proc that has nothing else;
/// for others the real one stands where nothing but the links below leads.
void ShowOwnProcesses(const fs::path& tree) {
  const fs::path real = tree / kOwnDirectory / "real";
  fs::create_directories(real);
  constexpr unsigned long kFlags = MS_NOSUID | MS_NODEV | MS_NOEXEC;
  constexpr const char* kOwnOnly = "subset=pid,hidepid=invisible";
  if (mount("proc", real.c_str(), "proc", kFlags | MS_RDONLY, kOwnOnly) != 0) {
    ShowAt("/proc", real);
    mount(nullptr, real.c_str(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY | kFlags, nullptr);
  }
  for (const std::string& name : OwnEntries()) {
    fs::create_symlink(fs::path("pciinfo/real") / name, tree / "proc" / name);
  }
}

}  // namespace

void HideMachine(const std::string& tree, const std::vector<std::string>& files) {
  for (const char* const place : kHidden) fs::create_directories(InTree(tree, place));
  for (const char* const path : kNeeded) Keep(tree, path);
  KeepDirectories(tree, files);
  LinkDescriptors(tree);
  std::ofstream(fs::path(tree) / "etc/hosts").flush();  // no other names of this machine
  // Nothing may write to /etc while the capture is unpacked, so its own file stands elsewhere.
  fs::create_symlink(fs::path("/") / kOwnDirectory / "etc/machine-id",
                     fs::path(tree) / "etc/machine-id");
  ShowOwnProcesses(tree);
  for (const char* const place : kHidden) {
    if (Exists(place)) ShowAt(InTree(tree, place), place);
  }
  ShowAt(fs::path(tree) / "proc", "/proc");
  ShowAt(fs::path(tree) / "sys", "/sys");  // hides the tree itself
}

}  // namespace pciinfo
