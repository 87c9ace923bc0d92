#pragma once

#include <string>
#include <string_view>

#include "runtime/file_descriptor.h"

namespace pciinfo {

/// Writes files, folders and links below one directory and never outside of it: no link on the way
/// is followed. Paths are relative, of plain names ("sys/bus"). All throw std::system_error, whose
/// text names the path.
class CaptureTree final {
 public:
  /// `directory` must exist.
  explicit CaptureTree(const std::string& directory);

  /// Makes a folder with those above it; one that is there already stays.
  void MakeFolder(const std::string& path);

  /// Makes a symbolic link and the folders above it.
  void MakeLink(const std::string& path, const std::string& target);

  /// Makes an empty file and the folders above it, and opens it for writing. A file that is there
  /// already is emptied.
  vtq::FileDescriptor MakeFile(const std::string& path);

 private:
  vtq::FileDescriptor OpenFolderOf(const std::string& path);

  vtq::FileDescriptor root_;
};

/// Writes all of `bytes` to an open file. Throws std::system_error.
void WriteBytes(const vtq::FileDescriptor& file, std::string_view bytes);

}  // namespace pciinfo
