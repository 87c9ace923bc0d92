// SPDX-License-Identifier: Apache-2.0
#include "tests/fakes/machine_tree.h"

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

namespace fs = std::filesystem;

namespace {

fs::path root;

void Require(bool done, const char* what) {
  if (done) return;
  std::fprintf(
      stderr,
      "tests: cannot %s: %s. The tests put a made-up /proc and /sys into a mount namespace "
      "of their own; run them as root or allow unprivileged user namespaces "
      "(sysctl kernel.unprivileged_userns_clone=1).\n",
      what, std::strerror(errno));
  std::exit(1);
}

void WriteProcFile(const char* path, const std::string& text) {
  std::ofstream file(path);
  file << text << std::flush;
  Require(file.good(), path);
}

void EnterNamespaces() {
  const uid_t user = getuid();
  const gid_t group = getgid();
  if (user == 0) {
    Require(unshare(CLONE_NEWNS) == 0, "enter a mount namespace");
  } else {
    Require(unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0, "enter a user namespace");
    WriteProcFile("/proc/self/setgroups", "deny");
    WriteProcFile("/proc/self/uid_map", "0 " + std::to_string(user) + " 1");
    WriteProcFile("/proc/self/gid_map", "0 " + std::to_string(group) + " 1");
  }
  Require(mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "make mounts private");
}

void Bind(const fs::path& from, const char* to, unsigned long flags = 0) {
  Require(mount(from.c_str(), to, nullptr, MS_BIND | flags, nullptr) == 0, "bind a directory");
}

// The real /proc stays reachable by links, because run-time libraries read /proc/self.
void LinkRealProc() {
  const fs::path realProc = root / "real-proc";
  fs::create_directory(realProc);
  Bind("/proc", realProc.c_str(), MS_REC);
  for (const fs::directory_entry& entry : fs::directory_iterator(realProc)) {
    const std::string name = entry.path().filename();
    const bool otherProcess =
        std::isdigit(static_cast<unsigned char>(name[0])) != 0 && name != std::to_string(getpid());
    if (name == "bus" || name == "pci" || otherProcess) continue;
    fs::create_symlink(entry.path(), root / "proc" / name);
  }
}

void WriteFile(const fs::path& path, std::string_view content) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << content;
}

std::string Hex(unsigned value, int digits) {
  char text[16];
  std::snprintf(text, sizeof text, "%0*x", digits, value);
  return text;
}

}  // namespace

void MachineTree::Enter() {
  EnterNamespaces();
  root = "/mnt";  // exists everywhere; the mount is visible only here
  Require(mount("tmpfs", root.c_str(), "tmpfs", 0, nullptr) == 0, "mount a tmpfs");
  fs::create_directories(root / "proc");
  fs::create_directories(root / "sys");
  LinkRealProc();
  Bind(root / "proc", "/proc");
  Bind(root / "sys", "/sys");
  Clear();
}

fs::path MachineTree::Real(const std::string& path) { return root / path.substr(1); }

void MachineTree::Clear() {
  fs::remove_all(Real("/proc/bus"));
  fs::remove_all(Real("/proc/pci"));
  for (const fs::directory_entry& entry : fs::directory_iterator(Real("/sys"))) {
    fs::remove_all(entry.path());
  }
  fs::create_directories(Real("/proc/bus/pci"));
}

void MachineTree::Write(const std::string& path, std::string_view content) {
  WriteFile(Real(path), content);
}

void MachineTree::Remove(const std::string& path) { fs::remove_all(Real(path)); }

std::string AsText(const std::vector<unsigned char>& bytes) {
  return std::string(bytes.begin(), bytes.end());
}

std::vector<unsigned char> Header(const FakeFunction& function) {
  if (!function.header.empty()) return function.header;
  std::vector<unsigned char> header(64);
  header[0x00] = static_cast<unsigned char>(function.vendorId);
  header[0x01] = static_cast<unsigned char>(function.vendorId >> 8);
  header[0x02] = static_cast<unsigned char>(function.deviceId);
  header[0x03] = static_cast<unsigned char>(function.deviceId >> 8);
  header[0x0A] = function.subclass;
  header[0x0B] = function.baseClass;
  return header;
}

std::string DeviceLine(const FakeFunction& function) {
  std::string line = Hex(function.bus << 8 | function.device << 3 | function.function, 4) + "\t" +
                     Hex(function.vendorId, 4) + Hex(function.deviceId, 4) + "\t" + function.irq;
  for (const std::string& base : function.baseAddresses) line += "\t" + base;
  line += "\t0";
  for (const std::string& size : function.sizes) line += "\t" + size;
  return line + "\t0\t\n";
}

void PutFunctions(const std::vector<FakeFunction>& functions) {
  std::string list;
  for (const FakeFunction& function : functions) {
    list += DeviceLine(function);
    MachineTree::Write("/proc/bus/pci/" + Hex(function.bus, 2) + "/" + Hex(function.device, 2) +
                           "." + std::to_string(function.function),
                       AsText(Header(function)));
  }
  MachineTree::Write("/proc/bus/pci/devices", list);
}
