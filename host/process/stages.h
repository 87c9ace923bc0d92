#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "host/base/exit_status.h"
#include "host/process/successor.h"
#include "runtime/file_descriptor.h"

namespace pciinfo {

/// What plug-ins and the tools that they run may take.
struct Limits {
  std::chrono::milliseconds time{};     ///< for all stages together, from the start of the run
  std::optional<std::uint64_t> memory;  ///< bytes of address space of each process
};

/// The stage that a run begins with.
struct FirstStage {
  std::string what;     ///< in words ("loading the plug-ins")
  bool isLast = false;  ///< no other one comes after it
};

/// A run that outlives what it runs. It is done stage by stage in a process that is forked for it,
/// while this one waits. When a stage dies, hangs, or takes all memory, the process that waits
/// forks another one, which does the run again, without that stage. So plug-ins may be forked
/// before they are loaded and between two calls, and may be asked again what they have answered
/// already.
///
/// A fork costs as much as a small machine's inventory: it is made where it saves more than it
/// costs. A process that has worked for a second forks before its next stage and waits from then
/// on: what it has done need not be done again.
class Stages final {
 public:
  Stages(const Stages&) = delete;
  Stages& operator=(const Stages&) = delete;
  /// Tells the process that waits that this one came to its end in good order; a process that a
  /// plug-in ends does not get here.
  ~Stages();

  /// Begins a stage. Returns nothing when this process is to do the stage, call EndStage and go on
  /// with the rest of the run. Otherwise the stage cannot be done, for the reason that is returned,
  /// as a clause ("died by signal 11 (...)"). Every stage but the last may take half of the time
  /// that is left, so that one that hangs leaves some to the others.
  std::optional<std::string> Begin(bool isLast);

  /// The stage was done, and no time is counted until the next one begins. A stage that leaves no
  /// memory to go on with is given up here, and does not return.
  void EndStage();

  /// What is done for the user only is over: what comes now is work of the plug-ins again, and may
  /// take ten seconds.
  void BeginEnding();

  /// The run is over, with that status: EndProcess.
  ExitStatus End(ExitStatus status);

 private:
  friend ExitStatus RunInStages(const Limits&, const FirstStage&,
                                const std::function<ExitStatus(Stages&)>&);
  explicit Stages(const Limits& limits);

  /// Forks. In the new process it returns nothing, and `words_` leads to this one. Throws
  /// std::system_error.
  std::optional<Successor> Fork();
  /// Forks for the stage that begins. In the new process it returns nothing; in this one it returns
  /// why the stage was not done.
  std::optional<std::string> BeginApart(bool isLast);
  /// The number of the stage that a successor of this process begins as its `begun`-th one.
  int StageOf(int begun) const;
  std::chrono::milliseconds TimeFor(int begun, bool isLast) const;
  SuccessorEnd Await(Successor& successor, bool isLast, int signals) const;
  /// Takes note of the stage in which a successor ended, and answers its number.
  int Lose(const SuccessorEnd& end);
  /// Ends this process, as the successor that did the rest of the run has ended.
  [[noreturn]] void FollowToItsEnd(const SuccessorEnd& end);
  /// Why a stage was not done, or the rest of the run not carried to its end, as a clause.
  std::string ReasonOf(const SuccessorEnd& end) const;
  /// The same as a message, which names what was being done; `stage` is the name of the stage.
  std::string FailureOf(const SuccessorEnd& end, const std::string& stage) const;
  ExitStatus RunFirst(const std::function<ExitStatus(Stages&)>& run);
  /// Ends this process when there is nobody to tell it.
  void Tell(Progress progress) noexcept;

  Limits limits_;
  std::chrono::steady_clock::time_point deadline_;
  std::chrono::steady_clock::time_point forked_;  ///< when this process began to work
  int stage_ = 0;                                 ///< the number of the one that was begun last
  int lastDone_ = -1;  ///< the last one that was done already, in a process that ended later
  std::map<int, std::string> failures_;  ///< why stages were not done, by their numbers
  vtq::FileDescriptor words_;            ///< to the process that waits; none in the first one
};

/// Runs `run`, which begins in its first stage, in a process that has no more rights than it needs
/// and a working directory of its own, while this one waits, whatever becomes of the other.
/// Returns in both processes: what `run` answered, or kFailed after a message when it came to no
/// end. A signal that ends this process ends them all; nothing that they started outlives it.
/// Throws std::system_error when there can be no other process.
ExitStatus RunInStages(const Limits& limits, const FirstStage& first,
                       const std::function<ExitStatus(Stages&)>& run);

}  // namespace pciinfo
