// SPDX-License-Identifier: Apache-2.0
#include "host/replay/root.h"

#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>

#include "host/capture/capture_tree.h"
#include "host/process/confinement.h"
#include "host/replay/capture_reader.h"
#include "host/replay/root_namespace.h"
#include "host/replay/root_unpack.h"
#include "runtime/command_replay.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

// The captured tree is built on a file system mounted over the machine's /sys. Every machine has
// this directory, and the captured /sys hides it in the end anyway.
constexpr const char* kTree = "/sys";

/// Programs need other parts of /proc, such as /proc/self. So the real /proc is bind-mounted below
/// the captured one, which has links into it for everything but PCI and other processes.
void LinkRealProc() {
  const fs::path real = fs::path(kTree) / kOwnFolder / "real";
  fs::create_directories(real);
  ShowAt("/proc", real);
  for (const fs::directory_entry& entry : fs::directory_iterator(real)) {
    const std::string name = entry.path().filename();
    const bool isProcess = std::isdigit(static_cast<unsigned char>(name.front())) != 0;
    const bool isOther = isProcess && name != std::to_string(getpid());
    if (isOther || name == "bus" || name == "pci") continue;
    fs::create_symlink(fs::path("pciinfo/real") / name, fs::path(kTree) / "proc" / name);
  }
}

void PutInPlace() {
  ShowAt(fs::path(kTree) / "proc", "/proc");
  ShowAt(fs::path(kTree) / "sys", "/sys");  // hides the tree itself
}

void MoveToEmptyFolder() {
  const fs::path folder = fs::path("/") / kOwnFolder / "work";
  fs::create_directory(folder);
  fs::current_path(folder);
}

Manifest Serve(CaptureReader& reader) {
  EnterNamespaces();
  MountMemory(kTree);
  CaptureTree tree(kTree);
  tree.MakeFolder("sys");
  tree.MakeFolder(kCommandsFolder);
  const std::optional<std::string> json = UnpackCapture(reader, tree);
  Manifest manifest = json ? ParseManifest(*json) : Manifest{};
  LinkRealProc();
  PutInPlace();
  NameSystem(manifest.systemName, fs::path("/") / kOwnFolder / "hosts");
  GiveUpHardwareAccess();
  MoveToEmptyFolder();
  return manifest;
}

}  // namespace

Manifest ServeRoot(const std::string& capture, CommandSource commands) {
  try {
    Manifest manifest = Serve(*OpenCapture(capture));
    const bool replay = commands == CommandSource::kRecorded;
    vtq::ReplayCommandsFrom(replay ? fs::path("/") / kCommandsFolder : "");
    return manifest;
  } catch (const BadCapture& bad) {
    throw BadCapture("cannot use the capture " + capture + ": " + bad.what());
  }
}

}  // namespace pciinfo
