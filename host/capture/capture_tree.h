// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "runtime/file_descriptor.h"

namespace pciinfo {

/// Writes files, directories and links below one directory and never outside it: follows no link.
/// Paths are relative and without "." and ".." ("sys/bus"). All functions throw std::system_error,
/// whose text names the path.
class CaptureTree final {
 public:
  /// `directory` must exist.
  explicit CaptureTree(const std::string& directory);
  /// `directory` must be an open directory.
  explicit CaptureTree(vtq::FileDescriptor directory) : root_(std::move(directory)) {}

  /// Makes a directory and its parents; keeps existing ones.
  void MakeDirectory(const std::string& path);

  /// Makes a symbolic link and its parent directories.
  void MakeLink(const std::string& path, const std::string& target);

  /// Makes a file and its parent directories and opens it for writing. An existing file is emptied.
  vtq::FileDescriptor MakeFile(const std::string& path);

  /// Returns the number of directories that were made, those on the way to others included.
  std::uint64_t GetDirectories() const noexcept { return directories_; }

 private:
  vtq::FileDescriptor OpenDirectoryOf(const std::string& path);
  vtq::FileDescriptor MakeDirectories(const std::string& path);
  void MakeDirectoryIn(const vtq::FileDescriptor& directory, const std::string& name,
                       const std::string& path);

  vtq::FileDescriptor root_;
  std::uint64_t directories_ = 0;
};

/// Writes all of `bytes` to an open file. Throws std::system_error.
void WriteBytes(const vtq::FileDescriptor& file, std::string_view bytes);

}  // namespace pciinfo
