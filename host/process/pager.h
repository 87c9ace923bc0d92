#pragma once

#include <functional>
#include <string>

#include "host/base/exit_status.h"
#include "runtime/file_descriptor.h"

namespace pciinfo {

/// Where messages go that the user is to see when the pager has ended.
class LateMessages final {
 public:
  LateMessages() = default;
  explicit LateMessages(vtq::FileDescriptor file) : file_(std::move(file)) {}

  /// What this process writes to standard error from now on is kept until the pager has ended.
  /// Nothing happens where there is no pager, or standard error is no terminal.
  void Hold() const noexcept;

 private:
  vtq::FileDescriptor file_;
};

/// Runs `run` in a process whose standard output a pager shows. The pager is started by the first
/// output, so that nothing is in the way of what is done before, and is waited for. Where it cannot
/// be started, the output goes out as it is, after a message unless it is the default pager.
///
/// Returns in both processes; in this one what `run` answered, with a pager that the user left
/// early taken for one that has shown all. A signal that ended `run` ends this process too. Throws
/// std::system_error when there can be no other process.
ExitStatus RunWithPager(const std::string& pager,
                        const std::function<ExitStatus(const LateMessages&)>& run);

}  // namespace pciinfo
