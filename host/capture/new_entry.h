// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "runtime/file_descriptor.h"

namespace pciinfo {

/// The place of a new file or directory: its parent directory, opened once, and its name in it. So
/// it stays the same place when somebody renames or replaces a directory on the way.
class Place final {
 public:
  /// Throws std::system_error, naming `path`, when the parent directory cannot be opened.
  explicit Place(const std::string& path);

  const std::string& GetPath() const noexcept { return path_; }
  const vtq::FileDescriptor& GetParent() const noexcept { return parent_; }
  const std::string& GetName() const noexcept { return name_; }

  /// A name in the same directory that nobody else knows.
  const std::string& GetTemporary() const noexcept { return temporary_; }

  /// Whether the entry that is open as `file` has the temporary name.
  bool IsTemporary(const vtq::FileDescriptor& file) const noexcept;

  /// Moves the entry that is open as `file` from the temporary name to its own, over what has that
  /// now. Throws std::system_error, and std::runtime_error when somebody else has exchanged it.
  void TakeOver(const vtq::FileDescriptor& file) const;

 private:
  std::string path_;
  std::string name_;
  std::string temporary_;
  vtq::FileDescriptor parent_;
};

/// A file, readable by its owner only, that appears under its name when it is complete, and leaves
/// nothing when it is not. It has no name at all before, where the file system allows that;
/// elsewhere it stands beside its place under a temporary name. Another process may commit what
/// this one made. All functions throw std::system_error, naming the path.
class NewFile final {
 public:
  explicit NewFile(const std::string& path);
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile();

  const vtq::FileDescriptor& GetFile() const noexcept { return file_; }

  /// Writes the file to the disk and gives it its name; an older file of that name is replaced.
  void Commit();

 private:
  bool Link(const std::string& name) const noexcept;

  Place place_;
  vtq::FileDescriptor file_;
};

/// A directory, open to its owner only, that has a temporary name beside its place until it is
/// complete, and leaves nothing when it never is. Another process may fill and commit what this one
/// made. All functions throw std::system_error, naming the path, and std::runtime_error when
/// somebody else has exchanged the directory.
class NewDirectory final {
 public:
  explicit NewDirectory(const std::string& path);
  NewDirectory(const NewDirectory&) = delete;
  NewDirectory& operator=(const NewDirectory&) = delete;
  ~NewDirectory();

  const vtq::FileDescriptor& GetDirectory() const noexcept { return directory_; }
  /// The path that the directory has until it is committed.
  std::string GetTemporaryPath() const;

  /// Gives the directory its name; an empty directory of that name is replaced.
  void Commit();

 private:
  Place place_;
  vtq::FileDescriptor directory_;
};

}  // namespace pciinfo
