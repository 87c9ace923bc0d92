#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <optional>

#include "runtime/file_descriptor.h"

namespace pciinfo {

/// How far a process is, as it tells the one that waits for it; each is one byte in the pipe
/// between them.
enum class Progress : char {
  kStage = 's',      ///< does a stage, and others come after it
  kLastStage = 'l',  ///< does the last stage
  kNoRoom = 'n',     ///< gives its stage up for want of memory
  kDone = 'd',       ///< has done its stage; until the next one it has no time limit
  kEnding = 'e',     ///< ends the plug-ins
  kOver = 'o',       ///< came to its end in good order
};

/// How a successor ended.
struct SuccessorEnd {
  Progress progress = Progress::kStage;  ///< the last that it told
  int begun = 1;                         ///< stages, the one that it was forked for among them
  /// The time that it was made to end for having exceeded.
  std::optional<std::chrono::milliseconds> outOfTime;
  int signal = 0;  ///< it was made to end, for this signal came in
  int status = 0;  ///< as waitpid reports it, when it ended by itself
};

/// A process that was forked to do stages.
class Successor final {
 public:
  /// How long the stage may take that is the `begun`-th one of the process.
  using StageTime = std::function<std::chrono::milliseconds(int begun, bool isLast)>;

  /// Takes the process, which must be a child of this one, and the reading end of its pipe. Throws
  /// std::system_error, with the process ended.
  Successor(pid_t process, vtq::FileDescriptor words);

  /// Waits until it ends, and makes it end when a stage takes longer than `time` says, its ending
  /// longer than ten seconds, or when a signal comes in: `signals` is a signalfd, or -1 where
  /// somebody else looks after them. At a signal, and where signals come in also in the last stage,
  /// it may first clean up, for two seconds. Nothing that it started is left. Its first stage is
  /// `first`.
  SuccessorEnd Await(Progress first, const StageTime& time, int signals);

 private:
  void ReadWords(const StageTime& time);
  void SetProgress(Progress progress, const StageTime& time);
  void AllowTime(std::chrono::milliseconds time);
  bool HasEndedWithin(std::chrono::milliseconds time) const;
  /// Ends it by `signal`, if it does not listen with force.
  void MakeEnd(int signal);

  pid_t process_;
  vtq::FileDescriptor words_;
  vtq::FileDescriptor life_;  ///< a pidfd
  Progress progress_ = Progress::kStage;
  int begun_ = 0;
  bool isTimed_ = true;
  std::chrono::milliseconds time_{};
  std::chrono::steady_clock::time_point deadline_;
};

}  // namespace pciinfo
