#include "host/process/stages.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <system_error>
#include <utility>

#include "host/console/output.h"
#include "host/process/confinement.h"
#include "host/process/descendants.h"
#include "host/process/ending_signals.h"
#include "host/process/process_end.h"
#include "host/process/scratch_folder.h"

namespace pciinfo {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kNoTime{0};
/// Work that takes longer is not done twice.
constexpr milliseconds kWorthKeeping{1000};
/// What is done again may take that long, however little time is left: a stage that hangs as the
/// last one has used it up.
constexpr milliseconds kTimeForRepetition{5000};

/// To a tenth, for people.
double Seconds(milliseconds time) {
  return std::round(static_cast<double>(time.count()) / 100) / 10;
}

[[noreturn]] void ThrowErrno() { throw std::system_error(errno, std::generic_category()); }

/// The first thing that a new process does: it has its own group, to be ended with all that is in
/// it, and ends when the process before it does.
void Settle(pid_t parent) noexcept {
  setpgid(0, 0);
  std::signal(SIGTTOU, SIG_IGN);  // its group is no longer the terminal's, but it prints
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(kFailed);
}

std::string HowItEnded(int status) {
  if (WIFSIGNALED(status)) {
    const int signal = WTERMSIG(status);
    return fmt::format("died by signal {} ({})", signal, strsignal(signal));
  }
  return fmt::format("ended the program, with exit status {}", WEXITSTATUS(status));
}

/// What a process did that had done its stage and did not come to its end.
const char* LaterWork(Progress progress) {
  return progress == Progress::kDone ? "printing" : "ending the plug-ins";
}

bool CameToItsEnd(const SuccessorEnd& end) {
  return end.progress == Progress::kOver && !end.outOfTime && WIFEXITED(end.status);
}

/// Whether no stage was being done.
bool DidItsStages(const SuccessorEnd& end) {
  return end.progress != Progress::kStage && end.progress != Progress::kLastStage &&
         end.progress != Progress::kNoRoom;
}

ExitStatus StatusOf(const SuccessorEnd& end) {
  return static_cast<ExitStatus>(WEXITSTATUS(end.status));
}

/// Signals that wait to be read as long as this lives, instead of ending the process.
class HeldSignals final {
 public:
  HeldSignals() : held_(EndingSignals()), file_(signalfd(-1, &held_, SFD_CLOEXEC | SFD_NONBLOCK)) {
    sigprocmask(SIG_BLOCK, &held_, &before_);
  }
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;
  ~HeldSignals() { Release(); }

  int Get() const noexcept { return file_.Get(); }
  void Release() noexcept {
    file_.Close();
    sigprocmask(SIG_SETMASK, &before_, nullptr);
  }

 private:
  sigset_t held_;
  sigset_t before_{};
  vtq::FileDescriptor file_;
};

}  // namespace

Stages::Stages(const Limits& limits)
    : limits_(limits), deadline_(steady_clock::now() + limits.time), forked_(steady_clock::now()) {}

Stages::~Stages() { Tell(Progress::kOver); }

void Stages::Tell(Progress progress) noexcept {
  if (!words_.IsOpen()) return;
  const char word = static_cast<char>(progress);
  // Without the pipe the process that waits would take this one's work for undone.
  if (WriteAll(words_.Get(), {&word, 1}) != 0) _exit(kFailed);
}

std::optional<Successor> Stages::Fork() {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) ThrowErrno();
  vtq::FileDescriptor reading(ends[0]);
  vtq::FileDescriptor writing(ends[1]);
  AdoptOrphans();
  std::fflush(nullptr);  // or what a plug-in has printed so far comes out of both processes
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child < 0) ThrowErrno();
  if (child > 0) return Successor(child, std::move(reading));
  Settle(parent);
  words_ = std::move(writing);
  forked_ = steady_clock::now();
  return std::nullopt;
}

int Stages::StageOf(int begun) const {
  int stage = stage_;
  for (int i = 1; i < begun; ++i) {
    do ++stage;
    while (failures_.count(stage) != 0);
  }
  return stage;
}

milliseconds Stages::TimeFor(int begun, bool isLast) const {
  const auto left = std::chrono::ceil<milliseconds>(deadline_ - steady_clock::now());
  const bool isRepetition = StageOf(begun) <= lastDone_;
  return std::max(isRepetition ? kTimeForRepetition : kNoTime, isLast ? left : left / 2);
}

SuccessorEnd Stages::Await(Successor& successor, bool isLast, int signals) const {
  return successor.Await(
      isLast ? Progress::kLastStage : Progress::kStage,
      [this](int begun, bool isLastStage) { return TimeFor(begun, isLastStage); }, signals);
}

int Stages::Lose(const SuccessorEnd& end) {
  const int stage = StageOf(end.begun);
  failures_[stage] = ReasonOf(end);
  lastDone_ = std::max(lastDone_, stage - 1);
  return stage;
}

std::string Stages::ReasonOf(const SuccessorEnd& end) const {
  if (end.progress == Progress::kNoRoom) return "left no memory to go on with (--memory-limit)";
  if (!end.outOfTime) return HowItEnded(end.status);
  std::string stopped = fmt::format("was stopped after {:g} seconds", Seconds(*end.outOfTime));
  if (DidItsStages(end)) return stopped;
  return stopped + fmt::format(" (--timeout bounds the whole run to {:g})", Seconds(limits_.time));
}

std::string Stages::FailureOf(const SuccessorEnd& end, const std::string& stage) const {
  return fmt::format("{}: the process {}", DidItsStages(end) ? LaterWork(end.progress) : stage,
                     ReasonOf(end));
}

std::optional<std::string> Stages::Begin(bool isLast) {
  ++stage_;
  const auto failure = failures_.find(stage_);
  if (failure != failures_.end()) return failure->second;
  if (steady_clock::now() - forked_ > kWorthKeeping) return BeginApart(isLast);
  Tell(isLast ? Progress::kLastStage : Progress::kStage);
  return std::nullopt;
}

std::optional<std::string> Stages::BeginApart(bool isLast) {
  try {
    while (std::optional<Successor> successor = Fork()) {
      const SuccessorEnd end = Await(*successor, isLast, -1);
      if (DidItsStages(end)) FollowToItsEnd(end);
      if (Lose(end) == stage_) return failures_[stage_];
    }
    return std::nullopt;
  } catch (const std::system_error& error) {
    return "could not be given a process: " + error.code().message();
  }
}

void Stages::FollowToItsEnd(const SuccessorEnd& end) {
  if (!CameToItsEnd(end)) WriteMessage(FailureOf(end, ""));
  Tell(Progress::kOver);
  _exit(CameToItsEnd(end) ? StatusOf(end) : kFailed);
}

void Stages::EndStage() {
  if (!HasRoom()) {
    Tell(Progress::kNoRoom);
    _exit(kFailed);
  }
  Tell(Progress::kDone);
}

void Stages::BeginEnding() { Tell(Progress::kEnding); }

ExitStatus Stages::End(ExitStatus status) {
  Tell(Progress::kOver);
  return EndProcess(status);
}

ExitStatus Stages::RunFirst(const std::function<ExitStatus(Stages&)>& run) {
  GiveUpPrivileges();
  if (limits_.memory) LimitMemory(*limits_.memory);
  return run(*this);
}

ExitStatus RunInStages(const Limits& limits, const FirstStage& first,
                       const std::function<ExitStatus(Stages&)>& run) {
  ScratchFolder folder;
  HeldSignals signals;
  Stages stages(limits);
  while (std::optional<Successor> successor = stages.Fork()) {
    const SuccessorEnd end = stages.Await(*successor, first.isLast, signals.Get());
    if (end.signal != 0) {
      folder.Remove();
      EndBySignal(end.signal);
    }
    if (CameToItsEnd(end)) return StatusOf(end);
    if (DidItsStages(end) || stages.Lose(end) == 0) {
      WriteMessage(stages.FailureOf(end, first.what));
      return kFailed;
    }
  }
  signals.Release();
  folder.MoveIn();
  return stages.RunFirst(run);
}

}  // namespace pciinfo
