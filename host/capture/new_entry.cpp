// SPDX-License-Identifier: Apache-2.0
#include "host/capture/new_entry.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <stdexcept>
#include <system_error>

#include "host/capture/beneath.h"

namespace pciinfo {
namespace {

using vtq::FileDescriptor;

constexpr mode_t kOwnersFile = 0600;
constexpr mode_t kOwnersDirectory = 0700;

void Require(bool done, const std::string& path) {
  if (!done) throw std::system_error(errno, std::generic_category(), "cannot write " + path);
}

[[noreturn]] void FailExchanged(const std::string& path) {
  throw std::runtime_error("cannot write " + path + ": somebody else exchanged it meanwhile");
}

std::string ParentOf(const std::string& path) {
  const std::size_t end = path.rfind('/');
  if (end == std::string::npos) return ".";
  return end == 0 ? "/" : path.substr(0, end);
}

std::string LinkTo(const FileDescriptor& file) {
  return "/proc/self/fd/" + std::to_string(file.Get());
}

std::string TemporaryNameFor(const std::string& name) {
  std::uint64_t number = 0;
  [[maybe_unused]] const ssize_t ignored = getrandom(&number, sizeof number, 0);
  return fmt::format("{}.part-{:016x}", name, number);
}

uid_t OwnerOf(const FileDescriptor& file, const std::string& path) {
  struct stat status {};
  Require(fstat(file.Get(), &status) == 0, path);
  return status.st_uid;
}

}  // namespace

Place::Place(const std::string& path)
    : path_(path),
      name_(path.substr(path.rfind('/') + 1)),
      temporary_(TemporaryNameFor(name_)),
      parent_(open(ParentOf(path).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {
  Require(parent_.IsOpen(), path_);
}

bool Place::IsTemporary(const FileDescriptor& file) const noexcept {
  return IsEntry(parent_, temporary_, file);
}

void Place::TakeOver(const FileDescriptor& file) const {
  Require(renameat(parent_.Get(), temporary_.c_str(), parent_.Get(), name_.c_str()) == 0, path_);
  if (!IsEntry(parent_, name_, file)) FailExchanged(path_);
}

NewFile::NewFile(const std::string& path) : place_(path) {
  const int parent = place_.GetParent().Get();
  file_ = FileDescriptor(openat(parent, ".", O_WRONLY | O_TMPFILE | O_CLOEXEC, kOwnersFile));
  // Without /proc an unnamed file cannot get a name.
  if (file_.IsOpen() && access(LinkTo(file_).c_str(), F_OK) == 0) return;
  constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
  file_ = FileDescriptor(openat(parent, place_.GetTemporary().c_str(), kFlags, kOwnersFile));
  Require(file_.IsOpen(), path);
}

NewFile::~NewFile() {
  if (!place_.IsTemporary(file_)) return;
  unlinkat(place_.GetParent().Get(), place_.GetTemporary().c_str(), 0);
}

bool NewFile::Link(const std::string& name) const noexcept {
  return linkat(AT_FDCWD, LinkTo(file_).c_str(), place_.GetParent().Get(), name.c_str(),
                AT_SYMLINK_FOLLOW) == 0;
}

void NewFile::Commit() {
  Require(fsync(file_.Get()) == 0, place_.GetPath());
  if (!place_.IsTemporary(file_)) {
    if (Link(place_.GetName())) return;
    // A link replaces nothing, but renaming does.
    Require(errno == EEXIST && Link(place_.GetTemporary()), place_.GetPath());
  }
  place_.TakeOver(file_);
}

NewDirectory::NewDirectory(const std::string& path) : place_(path) {
  // The owner that this process's files get here: on some file systems it is not this user.
  const uid_t owner = OwnerOf(NewFile(path).GetFile(), path);
  const std::string& name = place_.GetTemporary();
  Require(mkdirat(place_.GetParent().Get(), name.c_str(), kOwnersDirectory) == 0, path);
  directory_ = OpenBeneath(place_.GetParent(), name, O_RDONLY | O_DIRECTORY);
  // Somebody else may have exchanged it in between.
  const bool isOwn =
      directory_.IsOpen() && OwnerOf(directory_, path) == owner && NamesIn(directory_).empty();
  if (!isOwn) FailExchanged(path);
}

NewDirectory::~NewDirectory() {
  if (!place_.IsTemporary(directory_)) return;
  RemoveContent(directory_);
  unlinkat(place_.GetParent().Get(), place_.GetTemporary().c_str(), AT_REMOVEDIR);
}

std::string NewDirectory::GetTemporaryPath() const {
  return ParentOf(place_.GetPath()) + "/" + place_.GetTemporary();
}

void NewDirectory::Commit() { place_.TakeOver(directory_); }

}  // namespace pciinfo
