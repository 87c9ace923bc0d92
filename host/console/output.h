// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "framework/export.h"

namespace pciinfo {

/// Thrown when the output cannot be written; `what()` says why.
class VTQ_EXPORT OutputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Thrown when the reader of the output has closed the pipe.
class VTQ_EXPORT ClosedPipe : public std::exception {
 public:
  const char* what() const noexcept override { return "the reader has closed the pipe"; }
};

/// Buffered output to a file descriptor; every failure is reported. SIGPIPE must be ignored;
/// otherwise a closed pipe ends the process before it can be reported.
class Output final {
 public:
  /// The caller keeps ownership of `descriptor`.
  explicit Output(int descriptor);
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  /// Throws OutputError or ClosedPipe when writing fails.
  void Write(std::string_view text) {
    if (text.size() > kBufferSize - size_) return WriteBeyondBuffer(text);
    size_ += text.copy(buffer_.get() + size_, text.size());
  }
  void Write(char character) {
    if (size_ == kBufferSize) Flush();
    buffer_[size_++] = character;
  }
  /// Writes the buffered text; throws like Write. The destructor does not flush.
  void Flush();

 private:
  static constexpr std::size_t kBufferSize = 65536;

  void WriteBeyondBuffer(std::string_view text);
  void Send(std::string_view text) const;

  int descriptor_;
  std::size_t size_ = 0;
  std::unique_ptr<char[]> buffer_;
};

/// Opens /dev/null for each closed standard stream, so that no file opened later gets the number of
/// such a stream. Writing to a closed standard output still fails, because it is opened for
/// reading.
void ReserveStandardStreams();

/// Writes all of `text` to a descriptor. Returns 0 or the error number (errno).
int WriteAll(int descriptor, std::string_view text) noexcept;

/// Writes to standard error and ignores failures.
void WriteErrorText(std::string_view text) noexcept;

/// As long as this lives, the lines that this process, and those that are forked from it, write to
/// standard error say what they are about: "pciinfo: NAME: ...". There is one at a time.
class MessageSubject final {
 public:
  explicit MessageSubject(std::string_view name);
  MessageSubject(const MessageSubject&) = delete;
  MessageSubject& operator=(const MessageSubject&) = delete;
  ~MessageSubject();
};

/// A line for standard error with the subject that it is about, if there is one.
std::string WithSubject(std::string_view line);

/// Writes one line to standard error, as WriteErrorText does.
void WriteErrorLine(std::string_view line) noexcept;

/// Writes "pciinfo: " and `text`, made printable, as a line to standard error; without enough
/// memory, writes "pciinfo: out of memory".
void WriteMessage(std::string_view text) noexcept;

}  // namespace pciinfo
