#pragma once

#include <string_view>

#include "runtime/file_descriptor.h"

namespace pciinfo {

/// A line on standard error that says what is being done, as soon as that takes longer than a
/// second, and that is erased in the end. A process of its own writes it, so that it goes on
/// whatever becomes of the processes that do the work; all that are forked from the one that made
/// this object may tell and end.
class ProgressLine final {
 public:
  /// Nothing is ever shown unless `wanted` and standard error is a terminal. Where there can be no
  /// such process, nothing is shown either.
  explicit ProgressLine(bool wanted) noexcept;
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  ~ProgressLine() { End(); }

  /// What is being done from now on, printable, without line ends.
  void Tell(std::string_view what) noexcept;

  /// Returns when the line is erased. Nothing is shown afterwards, by no process.
  void End() noexcept;

 private:
  vtq::FileDescriptor words_;
};

}  // namespace pciinfo
