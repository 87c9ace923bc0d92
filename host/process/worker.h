// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "host/base/exit_status.h"
#include "host/process/confinement.h"
#include "runtime/file_descriptor.h"

namespace pciinfo {

/// A part of a run that may crash or hang: loading the plug-ins, collecting a class.
struct Step {
  std::string what;       ///< in words ("loading the plug-ins")
  bool isNeeded = false;  ///< when it fails, the run has failed; others are left out then
  bool isLast = false;    ///< no step comes after it: it may use all the time that is left
};

/// What a worker tells its supervisor, in one packet each.
struct Report {
  enum class Kind : char {
    kStep,      ///< a step begins; the one before it is done
    kNoMemory,  ///< the step leaves no memory to go on with, so the worker ends
    kProgress,  ///< only the text of the progress line changes
    kOutput,    ///< the steps are done; the supervisor erases the progress line and answers
    kEnding,    ///< the plug-ins are being ended
    kOver,      ///< the worker came to its end in good order
  };
  static constexpr std::size_t kMostText = 200;

  Kind kind = Kind::kStep;
  bool isNeeded = false;
  bool isLast = false;
  int step = 0;                                  ///< its number, from 1
  std::chrono::steady_clock::time_point sent{};  ///< the supervisor may take it later
  char text[kMostText]{};                        ///< zero-terminated
};

/// What a worker needs to know of its supervisor.
struct WorkerLink {
  vtq::FileDescriptor reports;        ///< a socket of packets
  std::map<int, std::string> failed;  ///< why steps failed in workers before this one, by number
  vtq::FileDescriptor lateMessages;  ///< a file for messages while a pager shows the output, if any
  bool hasProgressLine = false;      ///< the supervisor may be showing one
  std::function<void(const Needs&)> confine;  ///< see Worker::Confine
};

/// The worker's side of its supervision: it says how far it is, so that the supervisor knows what
/// it was doing when it crashes or hangs.
class Worker final {
 public:
  /// A worker without a supervisor: nothing is told, nothing was left out.
  Worker() = default;
  explicit Worker(WorkerLink link) : link_(std::move(link)) {}
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  /// Begins a step. Returns nothing when it is to be done; otherwise it is to be left out, for the
  /// reason that is returned, as a clause ("died by signal 11 (...)"). Every run begins the same
  /// steps in the same order.
  std::optional<std::string> Begin(const Step& step);
  /// The step is done. Ends the process when it left no memory to go on with. Otherwise tells
  /// nothing, because another step or the output follows at once.
  void EndStep();
  /// What the step is doing now, for the progress line. Tells nothing where there is none.
  void Tell(const std::string& what);

  /// Gives up for good what the rest of the work does not need: rights (see Confine) and the user's
  /// working directory. Does nothing without a supervisor.
  void Confine(const Needs& needs) const;
  /// Gives up what Confine left for the files of `needs`. Does nothing without a supervisor.
  void GiveUpReading() const;
  /// To be called before the first output: returns when the progress line is erased. What goes to
  /// standard error from now on is shown when the pager has ended.
  void BeginOutput();
  /// What comes now is the work of the plug-ins again, and may take ten seconds.
  void BeginEnding() { Send(Report::Kind::kEnding); }
  /// Ends this process with that status. Destructors do not run (see EndProcess): for a large
  /// machine they take long.
  [[noreturn]] void End(ExitStatus status);

 private:
  void Send(Report::Kind kind, const Step& step = {});

  WorkerLink link_;
  int step_ = 0;
};

}  // namespace pciinfo
