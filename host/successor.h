#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>

#include "runtime/file_descriptor.h"

namespace pciinfo {

/// How far a process is, as it tells the one before it; each is one byte in the pipe between them.
enum class Progress : char {
  kWorking = 'w',  ///< does its stage
  kNoRoom = 'n',   ///< gives its stage up for want of memory
  kDone = 'd',     ///< has done its stage; what comes next has no time limit
  kEnding = 'e',   ///< ends the plug-ins
  kOver = 'o',     ///< came to its end in good order
};

/// How a successor ended.
struct SuccessorEnd {
  Progress progress = Progress::kWorking;  ///< the last that it told
  /// The time that it was made to end for having exceeded.
  std::optional<std::chrono::milliseconds> outOfTime;
  int signal = 0;  ///< it was made to end, for this signal came in
  int status = 0;  ///< as waitpid reports it, when it ended by itself
};

/// A process that was forked to do a stage.
class Successor final {
 public:
  /// Takes the process, which must be a child of this one, and the reading end of its pipe. Throws
  /// std::system_error, with the process ended.
  Successor(pid_t process, vtq::FileDescriptor words);

  /// Waits until it ends, and makes it end when its stage takes longer than `time`, its ending
  /// longer than ten seconds, or when a signal comes in: `signals` is a signalfd, or -1 where
  /// somebody else looks after them. With signals it may first clean up, for two seconds. Nothing
  /// that it started is left.
  SuccessorEnd Await(std::chrono::milliseconds time, int signals);

 private:
  void ReadWords();
  void SetProgress(Progress progress);
  void AllowTime(std::chrono::milliseconds time);
  bool HasEndedWithin(std::chrono::milliseconds time) const;
  /// Ends it by `signal`, if it does not listen with force.
  void MakeEnd(int signal);

  pid_t process_;
  vtq::FileDescriptor words_;
  vtq::FileDescriptor life_;  ///< a pidfd
  Progress progress_ = Progress::kWorking;
  bool isTimed_ = true;
  std::chrono::milliseconds time_{};
  std::chrono::steady_clock::time_point deadline_;
};

}  // namespace pciinfo
