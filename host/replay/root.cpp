// SPDX-License-Identifier: Apache-2.0
#include "host/replay/root.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cctype>
#include <cstdint>
#include <filesystem>
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

/// The file system gets room for the pages that small files do not fill, and for this program's own
/// files. So it is not full before the limits of the capture are reached, unless nearly all is
/// small files.
void MountTree(const CaptureLimits& limits) {
  constexpr std::uint64_t kOwnEntries = 10'000;
  MountMemory(kTree,
              fmt::format("size={},nr_inodes={}", 2 * limits.bytes, limits.entries + kOwnEntries));
}

Unpacked UnpackToTree(CaptureReader& reader, const CaptureLimits& limits) {
  CaptureTree tree(kTree);
  tree.MakeFolder("sys");
  tree.MakeFolder(kCommandsFolder);
  try {
    return UnpackCapture(reader, tree, limits);
  } catch (const std::system_error& failure) {
    if (failure.code() != std::errc::no_space_on_device) throw;
    throw BadCapture("it needs more memory than it may take (see --memory-limit)");
  }
}

Manifest ReadManifest(const Unpacked& unpacked) {
  const Manifest manifest = unpacked.manifest ? ParseManifest(*unpacked.manifest) : Manifest{};
  if (unpacked.parts >= manifest.parts.value_or(0)) return manifest;
  throw BadCapture(fmt::format(
      "it is incomplete: its manifest.json counts {} parts, and there are {} (without \"parts\" "
      "in manifest.json they are not counted)",
      *manifest.parts, unpacked.parts));
}

Manifest Serve(CaptureReader& reader, const CaptureLimits& limits) {
  EnterNamespaces();
  MountTree(limits);
  Manifest manifest = ReadManifest(UnpackToTree(reader, limits));
  LinkRealProc();
  PutInPlace();
  NameSystem(manifest.systemName, fs::path("/") / kOwnFolder / "hosts");
  GiveUpHardwareAccess();
  MoveToEmptyFolder();
  return manifest;
}

}  // namespace

Manifest ServeRoot(const std::string& capture, CommandSource commands,
                   const CaptureLimits& limits) {
  Manifest manifest = Serve(*OpenCapture(capture), limits);
  const bool replay = commands == CommandSource::kRecorded;
  vtq::ReplayCommandsFrom(replay ? fs::path("/") / kCommandsFolder : "");
  return manifest;
}

}  // namespace pciinfo
