// SPDX-License-Identifier: Apache-2.0
#include "host/replay/root.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "host/capture/capture_tree.h"
#include "host/process/confinement.h"
#include "host/replay/capture_reader.h"
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
void MakeWritableDirectory(const fs::path& directory) {
  fs::create_directories(directory);
  fs::permissions(directory, fs::perms::all);
}

void MakeDirectories() {
  for (const char* const directory : {"proc", "sys", kOwnDirectory, kWorkDirectory}) {
    MakeWritableDirectory(fs::path(kTree) / directory);
  }
}

/// The file system gets room for the pages that small files do not fill, and for this program's own
/// files. So it is not full before the limits of the capture are reached, unless nearly all is
/// small files.
void MountTree(const CaptureLimits& limits) {
  constexpr std::uint64_t kOwnEntries = 10'000;
  MountMemory(kTree,
              fmt::format("size={},nr_inodes={}", 2 * limits.bytes, limits.entries + kOwnEntries));
}

Manifest ReadManifest(const Unpacked& unpacked) {
  Manifest manifest = unpacked.manifest ? ParseManifest(*unpacked.manifest) : Manifest{};
  if (unpacked.parts >= manifest.parts.value_or(0)) return manifest;
  throw BadCapture(fmt::format(
      "it is incomplete: its manifest.json counts {} parts, and there are {} (without \"parts\" "
      "in manifest.json they are not counted)",
      *manifest.parts, unpacked.parts));
}

Manifest Unpack(CaptureReader& reader, CaptureTree& tree, const CaptureLimits& limits) {
  tree.MakeDirectory(kCommandsDirectory);
  try {
    return ReadManifest(UnpackCapture(reader, tree, limits));
  } catch (const std::system_error& failure) {
    if (failure.code() != std::errc::no_space_on_device) throw;
    throw BadCapture("it needs more memory than it may take (see --memory-limit)");
  }
}

// A directory is read with the rights of the user who named it: there is no format to be parsed,
// and perhaps nobody else may read it.
Manifest Serve(CaptureReader& reader, const Replay& replay) {
  const mode_t mask = umask(022);  // the process may be another user's when it reads the tree
  EnterNamespaces();
  MountTree(replay.limits);
  MakeDirectories();
  CaptureTree tree(kTree);
  std::optional<Manifest> manifest;
  if (reader.IsDirectory()) manifest = Unpack(reader, tree, replay.limits);
  HideMachine(kTree, replay.files);
  HideSystemName();
  fs::current_path(fs::path("/") / kWorkDirectory);
  GiveUpHardwareAccess();
  replay.confine({"/proc", "/sys", "."});
  if (!manifest) manifest = Unpack(reader, tree, replay.limits);
  umask(mask);
  vtq::SetSystemName(manifest->systemName);
  return std::move(*manifest);
}

}  // namespace

Manifest ServeRoot(const std::string& capture, const Replay& replay) {
  Manifest manifest = Serve(*OpenCapture(capture), replay);
  const bool isRecorded = replay.commands == CommandSource::kRecorded;
  vtq::ReplayCommandsFrom(isRecorded ? fs::path("/") / kCommandsDirectory : "");
  return manifest;
}

}  // namespace pciinfo
