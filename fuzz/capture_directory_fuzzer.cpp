// SPDX-License-Identifier: Apache-2.0

// Captures as untrusted directories. An input has a line for each entry of the directory: its kind,
// its path, and after a tab its content or target.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "fuzz/fuzz.h"
#include "fuzz/unpacked_tree.h"
#include "tests/runtime/temporary_directory.h"

namespace {

namespace fs = std::filesystem;

constexpr int kMostThings = 64;

// Whether the path stays inside the directory; it may contain everything else that a file system
// allows.
bool StaysInside(const fs::path& path) {
  return !path.empty() && std::find(path.begin(), path.end(), "..") == path.end();
}

// Skips entries that the file system does not allow.
void Make(char kind, const fs::path& place, const std::string& content, const fs::path& root) {
  std::error_code ignored;
  if (fs::weakly_canonical(place.parent_path(), ignored) != place.parent_path()) return;
  fs::create_directories(place.parent_path(), ignored);
  if (kind == 'f') std::ofstream(place, std::ios::binary) << content;
  if (kind == 'd') fs::create_directory(place, ignored);
  if (kind == 'l') fs::create_symlink(content, place, ignored);
  if (kind == 'h') fs::create_hard_link(root / "proc/pci", place, ignored);
  if (kind == 'p') mkfifo(place.c_str(), 0600);
}

void MakeThings(std::string_view input, const fs::path& root) {
  fuzz::Pieces lines(input);
  for (int i = 0; i < kMostThings && !lines.IsEmpty(); ++i) {
    fuzz::Pieces line(lines.Until('\n'));
    const char kind = static_cast<char>(line.Byte());
    const std::string path(line.Until('\t'));
    if (path.find('\0') != std::string::npos || !StaysInside(path)) continue;
    Make(kind, (root / ("./" + path)).lexically_normal(), std::string(line.Rest()), root);
  }
}

}  // namespace

void fuzz::CheckInput(std::string_view input) {
  const vtq::TemporaryDirectory directory;
  const fs::path root = fs::canonical(directory.GetPath());
  MakeThings(input, root);
  CheckCapture(root.string());
}
