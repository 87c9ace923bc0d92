// SPDX-License-Identifier: Apache-2.0
#include "fuzz/unpacked_tree.h"

#include <filesystem>
#include <optional>
#include <system_error>

#include "fuzz/fuzz.h"
#include "host/capture/manifest.h"
#include "host/replay/root_unpack.h"
#include "tests/runtime/temporary_directory.h"

namespace fuzz {

namespace {

namespace fs = std::filesystem;

// The last entry that is unpacked may need this many directories beyond the limit.
constexpr std::uintmax_t kDirectoriesOfOneEntry = 2 * 65;

// The tree is alone in its parent directory, so that files written beside it are noticed.
class Tree final {
 public:
  Tree() { fs::create_directory(root_); }
  Tree(const Tree&) = delete;
  Tree& operator=(const Tree&) = delete;
  ~Tree() { fs::remove_all(root_); }

  void Unpack(const std::string& name) const {
    try {
      const auto opened = pciinfo::OpenCapture(name);
      pciinfo::CaptureReader& reader = *opened;
      pciinfo::CaptureTree tree(root_.string());
      const auto manifest = pciinfo::UnpackCapture(reader, tree, kLimits).manifest;
      if (manifest) pciinfo::ParseManifest(*manifest);
    } catch (const pciinfo::BadCapture& failure) {
      Require(*failure.what() != '\0', "a refusal has a reason");
    } catch (const std::system_error& failure) {
      Require(*failure.what() != '\0', "a refusal has a reason");
    }
  }

  void Check() const {
    for (const fs::directory_entry& entry : fs::directory_iterator(Surroundings())) {
      Require(entry.path() == root_, "nothing is written beside the tree");
    }
    std::uintmax_t entries = 0;
    std::uintmax_t bytes = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root_)) {
      CheckEntry(entry);
      if (!entry.is_symlink() && entry.is_regular_file()) bytes += entry.file_size();
      ++entries;
    }
    Require(bytes <= kLimits.bytes, "no more bytes are written than the limit");
    Require(entries <= kLimits.entries + kDirectoriesOfOneEntry, "nor more entries");
  }

 private:
  static const fs::path& Surroundings() {
    static const vtq::TemporaryDirectory directory;
    static const fs::path path = fs::canonical(directory.GetPath());
    return path;
  }

  static bool IsPlace(const std::string& path) {
    for (const std::string place : {"proc/bus/pci", "proc/pci", "proc/pciinfo/commands",
                                    "proc/pciinfo/etc/machine-id", "sys"}) {
      if (path == place || path.starts_with(place + "/")) return true;
      if (place.starts_with(path + "/")) return true;
    }
    return false;
  }

  void CheckEntry(const fs::directory_entry& entry) const {
    const std::string path = entry.path().string().substr(root_.string().size() + 1);
    Require(IsPlace(path), "what is written is served");
    if (entry.is_symlink()) return CheckLink(entry.path(), path);
    Require(entry.is_regular_file() || entry.is_directory(), "only plain files are made");
  }

  void CheckLink(const fs::path& link, const std::string& path) const {
    Require(path.starts_with("sys/"), "links are in sys only");
    std::error_code loop;
    const fs::path target = fs::weakly_canonical(link, loop);
    if (loop) return;
    Require((target.string() + "/").starts_with((root_ / "sys").string() + "/"),
            "links stay in sys");
  }

  fs::path root_ = Surroundings() / "tree";
};

}  // namespace

void CheckCapture(const std::string& name) {
  const Tree tree;
  tree.Unpack(name);
  tree.Check();
}

}  // namespace fuzz
