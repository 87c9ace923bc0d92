// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <charconv>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace topology {

/// A decimal number that is the whole text.
template <class Number>
std::optional<Number> ParseNumber(const std::string& text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

/// A directory of the kernel's that is open. Files are opened relative to it, which spares the
/// kernel the path. What cannot be opened or read is as if it were not there; where that is a
/// failure, see read_failures.h, it is noted.
class Directory {
 public:
  /// Links in /sys lead to other devices, so whoever walks downwards refuses them.
  enum class Links { kFollow, kRefuse };

  explicit Directory(const std::string& path);
  Directory(const Directory& parent, const char* name, Links links = Links::kFollow);
  Directory(const Directory&) = delete;
  Directory& operator=(const Directory&) = delete;
  ~Directory();

  bool IsOpen() const { return file_ >= 0; }

  std::string GetPath() const;

  /// The entries whose names do not begin with a dot, sorted.
  std::vector<std::string> Names() const;

  /// Reads at most `limit` bytes from `offset` on; nothing if there are none. The kernel's
  /// attributes give at once what they have, so a short answer is the last one.
  std::optional<std::string> Read(const char* name, std::size_t limit,
                                  std::size_t offset = 0) const;
  /// An attribute of one line, without its line end and the blanks before it; empty if there is
  /// none.
  std::string ReadLine(const char* name) const;
  /// A decimal number that is the whole line.
  template <class Number>
  std::optional<Number> ReadNumber(const char* name) const {
    return ParseNumber<Number>(ReadLine(name));
  }
  /// The last part of the name that a symbolic link contains; empty if there is none.
  std::string ReadLinkName(const char* name) const;

  /// Opens a file for reading: a descriptor that the caller closes, or -1 with errno set.
  int OpenFile(const char* name) const;

 private:
  /// Notes why a call for `name` failed, unless errno says that there is no such thing.
  void NoteFailure(const char* name) const;

  const Directory* parent_ = nullptr;  ///< outlives this one
  std::string name_;                   ///< below the parent
  int file_;
};

}  // namespace topology
