// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "runtime/child_process.h"
#include "runtime/file_descriptor.h"

namespace vtq {

/// One run of a program, from its start to its last byte of output.
class CommandRun final {
 public:
  /// Starts the program in `file` with `words` (its name first). Throws std::system_error.
  CommandRun(const std::vector<std::string>& words, const std::string& file);

  /// Takes in both streams until the program ends (true) or the time is over (false). Throws
  /// std::system_error.
  bool Drain(std::chrono::steady_clock::time_point deadline);

  /// Ends what is left of the program's group, takes what its pipes still hold and returns the
  /// program's status as waitpid reports it. Called once. Throws std::system_error.
  int Finish();

  std::string& Output() noexcept { return outputText_; }
  std::string FirstErrorLine() const { return errorText_.substr(0, errorText_.find('\n')); }

 private:
  struct Pipe {
    FileDescriptor reading;
    FileDescriptor writing;
  };

  static Pipe MakePipe();
  CommandRun(const std::vector<std::string>& words, const std::string& file, Pipe output,
             Pipe errors);

  void ReadOutput();
  void ReadErrors();

  FileDescriptor output_;
  FileDescriptor errors_;
  ChildProcess child_;
  std::string outputText_;
  std::string errorText_;
};

}  // namespace vtq
