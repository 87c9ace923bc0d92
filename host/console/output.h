#pragma once

#include <cstddef>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "framework/export.h"

namespace pciinfo {

/// The output could not be written; `what()` says why.
class VTQ_EXPORT OutputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Whoever read the output has closed the pipe.
class VTQ_EXPORT ClosedPipe : public std::exception {
 public:
  const char* what() const noexcept override { return "the reader has closed the pipe"; }
};

/// Buffered output to a file descriptor in which no failure goes unnoticed. SIGPIPE must be
/// ignored, or a closed pipe ends the process instead of being reported.
class Output final {
 public:
  /// `descriptor` stays the caller's.
  explicit Output(int descriptor);
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  /// Throws OutputError or ClosedPipe when something could not be written.
  void Write(std::string_view text) {
    if (text.size() > kBufferSize - size_) return WriteBeyondBuffer(text);
    size_ += text.copy(buffer_.get() + size_, text.size());
  }
  /// Writes what is still buffered; throws like Write. What was not flushed is lost.
  void Flush();

 private:
  static constexpr std::size_t kBufferSize = 65536;

  void WriteBeyondBuffer(std::string_view text);
  void Send(std::string_view text) const;

  int descriptor_;
  std::size_t size_ = 0;
  std::unique_ptr<char[]> buffer_;
};

/// Opens /dev/null in the place of standard streams that are closed, so that no file opened later
/// gets such a stream's number. Writing to a standard output that was closed still fails.
void ReserveStandardStreams();

/// Writes all of `text` to a descriptor. Answers 0, or the error number.
int WriteAll(int descriptor, std::string_view text) noexcept;

/// Writes to standard error in one piece; a failure to do so is ignored.
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

/// Writes a message of this program, "pciinfo: " and `text` made printable, as WriteErrorLine does;
/// where memory does not suffice for that, it says so instead.
void WriteMessage(std::string_view text) noexcept;

}  // namespace pciinfo
