// SPDX-License-Identifier: Apache-2.0
#include "host/replay/root.h"

#include <sys/stat.h>

#include <filesystem>
#include <optional>
#include <utility>

#include "host/capture/capture_tree.h"
#include "host/process/confinement.h"
#include "host/replay/archive_reader.h"
#include "host/replay/hidden_machine.h"
#include "host/replay/root_namespace.h"
#include "host/replay/root_unpack.h"
#include "runtime/command_replay.h"
#include "runtime/host_name.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

// The captured tree is built on a file system mounted over the machine's /sys. Every machine has
// this directory, and the captured /sys hides it in the end anyway.
constexpr const char* kTree = "/sys";

/// Whoever unpacks the archive and collects may write here; only this process and its children see
/// these directories.
void MakeWritableFolder(const fs::path& folder) {
  fs::create_directories(folder);
  fs::permissions(folder, fs::perms::all);
}

void MakeFolders() {
  for (const char* const folder : {"proc", "sys", kOwnFolder, kWorkFolder}) {
    MakeWritableFolder(fs::path(kTree) / folder);
  }
}

Manifest Unpack(ArchiveReader& reader, CaptureTree& tree) {
  tree.MakeFolder(kCommandsFolder);
  const std::optional<std::string> json = UnpackCapture(reader, tree);
  return json ? ParseManifest(*json) : Manifest{};
}

// A directory is read with the rights of the user who named it: there is no format to be parsed,
// and perhaps nobody else may read it.
Manifest Serve(ArchiveReader& reader, const Replay& replay) {
  const mode_t mask = umask(022);  // the process may be another user's when it reads the tree
  EnterNamespaces();
  MountMemory(kTree);
  MakeFolders();
  CaptureTree tree(kTree);
  std::optional<Manifest> manifest;
  if (reader.IsDirectory()) manifest = Unpack(reader, tree);
  HideMachine(kTree, replay.files);
  HideSystemName();
  fs::current_path(fs::path("/") / kWorkFolder);
  GiveUpHardwareAccess();
  replay.confine({"/proc", "/sys", "."});
  if (!manifest) manifest = Unpack(reader, tree);
  umask(mask);
  vtq::SetSystemName(manifest->systemName);
  return std::move(*manifest);
}

}  // namespace

Manifest ServeRoot(const std::string& capture, const Replay& replay) {
  try {
    Manifest manifest = Serve(*OpenArchive(capture), replay);
    const bool isRecorded = replay.commands == CommandSource::kRecorded;
    vtq::ReplayCommandsFrom(isRecorded ? fs::path("/") / kCommandsFolder : "");
    return manifest;
  } catch (const BadCapture& bad) {
    throw BadCapture("cannot use the capture " + capture + ": " + bad.what());
  }
}

}  // namespace pciinfo
