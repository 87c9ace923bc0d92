// SPDX-License-Identifier: Apache-2.0
#include "host/process/supervisor.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstring>
#include <system_error>
#include <utility>

#include "host/console/output.h"
#include "host/process/caller_rights.h"
#include "host/process/childless_run.h"
#include "host/process/confinement.h"
#include "host/process/guarded_run.h"
#include "host/process/pager.h"
#include "host/process/process_tree.h"
#include "host/process/progress_line.h"
#include "host/process/scratch_directory.h"
#include "host/process/time_budget.h"

namespace pciinfo {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;
using Kind = Report::Kind;

constexpr milliseconds kEndingTime = std::chrono::seconds(10);
constexpr milliseconds kReportDelay{100};  // at most

[[noreturn]] void ThrowErrno(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

/// To a tenth, for people.
double Seconds(milliseconds time) {
  return std::round(static_cast<double>(time.count()) / 100) / 10;
}

std::string HowItEnded(int status) {
  if (WIFSIGNALED(status)) {
    const int signal = WTERMSIG(status);
    return fmt::format("died by signal {} ({})", signal, strsignal(signal));
  }
  return fmt::format("ended the program, with exit status {}", WEXITSTATUS(status));
}

/// Milliseconds until then, as poll takes them; -1 where there is no such time.
int PollTime(const std::optional<Clock::time_point>& time) {
  if (!time) return -1;
  constexpr milliseconds kMost = std::chrono::hours(1);
  const auto left = std::chrono::ceil<milliseconds>(*time - Clock::now());
  return static_cast<int>(std::clamp(left, milliseconds{0}, kMost).count());
}

template <std::size_t kCount>
void AwaitAny(std::array<pollfd, kCount>& watched, int mostMilliseconds) {
  if (poll(watched.data(), kCount, mostMilliseconds) >= 0 || errno == EINTR) return;
  ThrowErrno("cannot wait for a process");
}

struct SocketPair {
  vtq::FileDescriptor mine;
  vtq::FileDescriptor workers;
};

/// Packets, so that each report comes whole or not at all.
SocketPair MakeSockets() {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) {
    ThrowErrno("cannot start a process");
  }
  return {vtq::FileDescriptor(ends[0]), vtq::FileDescriptor(ends[1])};
}

/// How far the worker is that runs, or how it ended.
struct WorkerState {
  pid_t process = 0;  ///< 0 once it has ended
  vtq::FileDescriptor reports;
  Report last;                                ///< the last report but those of progress
  std::string step = "starting the program";  ///< the name of the last step
  Clock::time_point began;                    ///< when that step began
  milliseconds limit{};                       ///< of what it does now
  std::optional<Clock::time_point> deadline;  ///< none while no time is counted
  bool isOutOfTime = false;
  int status = 0;  ///< as waitpid reports it
};

class Supervisor final {
 public:
  Supervisor(const Supervision& supervision, HeldSignals& signals, const Work& work)
      : limits_(supervision.limits),
        signals_(signals),
        work_(work),
        budget_(limits_.time),
        line_(supervision.showsProgress) {
    const CallerRights caller = RightsOfCaller();
    if (supervision.pager && caller != CallerRights::kFewerAndOwnEnvironment) {
      pager_.emplace(*supervision.pager, caller != CallerRights::kSame);
    }
  }
  Supervisor(const Supervisor&) = delete;
  Supervisor& operator=(const Supervisor&) = delete;
  ~Supervisor() { EndWorker(); }

  ExitStatus Run() {
    do {
      StartWorker();
      while (worker_.process != 0) Wait();
      ProcessTree::KillOrphans(pager_ ? pager_->GetProcess() : 0);
    } while (signal_ == 0 && IsStepLost());
    line_.End();
    AwaitPager();
    if (signal_ != 0) throw EndedBySignal{signal_};
    return Answer();
  }

 private:
  void StartWorker();
  [[noreturn]] void RunWorker(vtq::FileDescriptor reports);
  void ConfineWorker(Needs needs) const;

  void Wait();
  void TakeSignals();
  void TakeEndedChildren();
  void TakeReports();
  void TakeReport(const Report& report);
  void BeginStep(const Report& report);
  void AllowTime(milliseconds time, Clock::time_point from);
  void EndWorker();
  void AwaitPager();

  bool CameToItsEnd() const;
  bool IsStepLost();
  std::string Reason() const;
  std::string NameOfWork() const;
  ExitStatus Answer() const;

  const pid_t process_ = getpid();
  Limits limits_;
  HeldSignals& signals_;
  const Work& work_;
  TimeBudget budget_;
  ProgressLine line_;
  ScratchDirectory directory_;
  ProcessTree processes_;
  std::optional<Pager> pager_;
  WorkerState worker_;
  std::map<int, std::string> failed_;  ///< why steps failed, by their numbers
  int signal_ = 0;                     ///< the first one that came in to end the program
};

void Supervisor::StartWorker() {
  SocketPair sockets = MakeSockets();
  worker_ = {};
  worker_.last.isNeeded = true;
  worker_.process = ProcessTree::Start([&] {
    sockets.mine.Close();
    RunWorker(std::move(sockets.workers));
  });
  worker_.reports = std::move(sockets.mine);
  // A step that hung may have used up the time; a worker after that one is to start all the same.
  budget_.NoteDone(0, milliseconds{0});
  const Clock::time_point now = Clock::now();
  AllowTime(budget_.TimeOf(0, false, now), now);
}

void Supervisor::RunWorker(vtq::FileDescriptor reports) {
  signals_.Release();
  vtq::FileDescriptor lateMessages;
  if (pager_) {
    pager_->ReceiveOutput();
    lateMessages = vtq::FileDescriptor(fcntl(pager_->GetLateMessages().Get(), F_DUPFD_CLOEXEC, 0));
  }
  if (limits_.memory) LimitMemory(*limits_.memory);
  Worker worker({std::move(reports), failed_, std::move(lateMessages), line_.IsWanted(),
                 [this](const Needs& needs) { ConfineWorker(needs); }});
  worker.End(RunGuarded([&] { return work_(worker); }));
}

void Supervisor::ConfineWorker(Needs needs) const {
  if (directory_.Enter()) needs.writable.emplace_back(".");
  Confine(needs);
  // When a process becomes another user's, the kernel forgets this.
  DieWithParent(process_);
}

/// Each report that woke this process would take a processor from the threads that the worker
/// starts next. So only a progress line follows reports at once; without it they are taken ten
/// times a second, which is soon enough to see that a step takes too long, and when the worker has
/// ended.
void Supervisor::Wait() {
  const bool isAwake = line_.IsWanted();
  std::array<pollfd, 3> watched = {{{signals_.GetDescriptor(), POLLIN, 0},
                                    {isAwake ? worker_.reports.Get() : -1, POLLIN, 0},
                                    {pager_ ? pager_->GetOutput() : -1, POLLIN, 0}}};
  std::optional<Clock::time_point> next = line_.GetDueTime();
  if (worker_.deadline) next = std::min(next.value_or(*worker_.deadline), *worker_.deadline);
  if (!isAwake)
    next = std::min(next.value_or(Clock::time_point::max()), Clock::now() + kReportDelay);
  AwaitAny(watched, PollTime(next));
  TakeReports();
  if (watched[2].revents != 0) pager_->HandleOutput((watched[2].revents & POLLIN) != 0);
  if (watched[0].revents != 0) TakeSignals();
  const Clock::time_point now = Clock::now();
  if (line_.GetDueTime() && now >= *line_.GetDueTime()) line_.Show();
  if (worker_.process == 0 || !worker_.deadline || now < *worker_.deadline) return;
  worker_.isOutOfTime = true;
  EndWorker();
}

void Supervisor::TakeSignals() {
  for (int signal = signals_.Take(); signal != 0; signal = signals_.Take()) {
    if (signal == SIGCHLD) {
      TakeEndedChildren();
      continue;
    }
    if (signal_ == 0) signal_ = signal;
    EndWorker();
  }
}

// One SIGCHLD may stand for several children.
void Supervisor::TakeEndedChildren() {
  while (const std::optional<ProcessTree::Ended> child = ProcessTree::TakeEnded()) {
    if (child->process == worker_.process) {
      worker_.process = 0;
      worker_.status = child->status;
      TakeReports();  // what it told last
    }
    if (pager_ && child->process == pager_->GetProcess()) pager_->HandleEnd(child->status);
  }
}

void Supervisor::EndWorker() {
  if (worker_.process == 0) return;
  worker_.status = ProcessTree::Kill(std::exchange(worker_.process, 0));
}

void Supervisor::TakeReports() {
  Report report;
  while (worker_.reports.IsOpen()) {
    const ssize_t size = recv(worker_.reports.Get(), &report, sizeof report, MSG_DONTWAIT);
    if (size < 0 && errno == EAGAIN) return;
    // A worker that ended without reading an answer resets the connection, once; what it told
    // before that comes next.
    if (size < 0 && (errno == ECONNRESET || errno == EINTR)) continue;
    if (size <= 0) return worker_.reports.Close();
    if (size != sizeof report) continue;  // not of the worker's own making
    report.text[Report::kMostText - 1] = '\0';
    // A plug-in may write to the socket, also a time in the future.
    report.sent = std::min(report.sent, Clock::now());
    TakeReport(report);
  }
}

void Supervisor::TakeReport(const Report& report) {
  if (report.kind == Kind::kProgress) return line_.Tell(report.text);
  const bool wasInStep = worker_.last.kind == Kind::kStep && worker_.last.step != 0;
  if (wasInStep && report.kind != Kind::kNoMemory) {
    const auto taken = std::chrono::ceil<milliseconds>(report.sent - worker_.began);
    budget_.NoteDone(worker_.last.step, taken);
  }
  if (report.kind == Kind::kStep) BeginStep(report);
  if (report.kind == Kind::kOutput) worker_.deadline.reset();
  if (report.kind == Kind::kEnding || report.kind == Kind::kOver)
    AllowTime(kEndingTime, report.sent);
  if (report.kind == Kind::kOutput) {
    line_.Erase();
    // The worker waits for the answer, so that its output does not come into the line.
    if (line_.IsWanted()) send(worker_.reports.Get(), "", 1, MSG_NOSIGNAL | MSG_DONTWAIT);
    line_.End();
  }
  const bool isNeeded = report.kind == Kind::kStep ? report.isNeeded : worker_.last.isNeeded;
  worker_.last = report;
  worker_.last.isNeeded = isNeeded;
}

void Supervisor::BeginStep(const Report& report) {
  worker_.step = report.text;
  worker_.began = report.sent;
  AllowTime(budget_.TimeOf(report.step, report.isLast, report.sent), report.sent);
  line_.Tell(report.text);
}

void Supervisor::AllowTime(milliseconds time, Clock::time_point from) {
  worker_.limit = time;
  worker_.deadline = from + time;
}

/// The worker has ended, and the user reads on.
void Supervisor::AwaitPager() {
  if (!pager_) return;
  pager_->EndOutput();
  if (signal_ != 0) pager_->Drop();
  while (pager_->IsBusy()) {
    std::array<pollfd, 2> watched = {
        {{signals_.GetDescriptor(), POLLIN, 0}, {pager_->GetOutput(), POLLIN, 0}}};
    AwaitAny(watched, -1);
    if (watched[1].revents != 0) pager_->HandleOutput((watched[1].revents & POLLIN) != 0);
    if (watched[0].revents != 0) TakeSignals();
  }
  pager_->ShowLateMessages();
}

bool Supervisor::CameToItsEnd() const {
  return worker_.last.kind == Kind::kOver && !worker_.isOutOfTime && WIFEXITED(worker_.status);
}

/// Takes note of a step in which the worker ended, if the run can do without it.
bool Supervisor::IsStepLost() {
  const bool isInStep = worker_.last.kind == Kind::kStep || worker_.last.kind == Kind::kNoMemory;
  if (!isInStep || worker_.last.isNeeded) return false;
  return failed_.emplace(worker_.last.step, Reason()).second;
}

/// Why a step was not done, or the rest of the run not carried to its end, as a clause.
std::string Supervisor::Reason() const {
  if (worker_.last.kind == Kind::kNoMemory) {
    return "left no memory to go on with (--memory-limit)";
  }
  if (!worker_.isOutOfTime) return HowItEnded(worker_.status);
  std::string stopped = fmt::format("was stopped after {:g} seconds", Seconds(worker_.limit));
  if (worker_.last.kind != Kind::kStep) return stopped;
  return stopped +
         fmt::format(" (--timeout bounds the whole run to {:g})", Seconds(budget_.GetTotal()));
}

/// What the worker was doing when it ended.
std::string Supervisor::NameOfWork() const {
  switch (worker_.last.kind) {
    case Kind::kOutput:
      return "printing";
    case Kind::kEnding:
    case Kind::kOver:
      return "ending the plug-ins";
    default:
      return worker_.step;
  }
}

ExitStatus Supervisor::Answer() const {
  if (!CameToItsEnd()) {
    WriteMessage(fmt::format("{}: the process {}", NameOfWork(), Reason()));
    return kFailed;
  }
  const auto status = static_cast<ExitStatus>(WEXITSTATUS(worker_.status));
  // A pager that the user leaves early has shown all that the user wanted.
  return pager_ && status == kPipeClosed ? kAllCollected : status;
}

}  // namespace

ExitStatus Supervise(const Supervision& supervision, HeldSignals& signals, const Work& work) {
  return RunChildless(signals, [&] { return Supervisor(supervision, signals, work).Run(); });
}

}  // namespace pciinfo
