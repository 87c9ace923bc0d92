#include "host/process/successor.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <limits>
#include <system_error>
#include <utility>

#include "host/process/descendants.h"
#include "runtime/process_descriptor.h"

namespace pciinfo {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kEndingTime = std::chrono::seconds(10);
constexpr milliseconds kGrace = std::chrono::seconds(2);

int PollTime(steady_clock::time_point deadline) {
  const auto left = std::chrono::ceil<milliseconds>(deadline - steady_clock::now()).count();
  return static_cast<int>(std::clamp<decltype(left)>(left, 0, std::numeric_limits<int>::max()));
}

int TakeSignal(int signals) {
  signalfd_siginfo signal{};
  const bool whole = read(signals, &signal, sizeof signal) == sizeof signal;
  return whole ? static_cast<int>(signal.ssi_signo) : SIGTERM;
}

}  // namespace

// The end of the pipe tells nothing about the process: what it started may hold it open.
Successor::Successor(pid_t process, vtq::FileDescriptor words)
    : process_(process), words_(std::move(words)), life_(vtq::OpenProcess(process)) {
  if (life_.IsOpen()) return;
  const int error = errno;
  KillTree(process);
  throw std::system_error(error, std::generic_category());
}

void Successor::SetProgress(Progress progress, const StageTime& time) {
  progress_ = progress;
  isTimed_ = progress != Progress::kDone;
  if (progress == Progress::kStage || progress == Progress::kLastStage) {
    ++begun_;
    AllowTime(time(begun_, progress == Progress::kLastStage));
  }
  if (progress == Progress::kEnding || progress == Progress::kOver) AllowTime(kEndingTime);
}

void Successor::AllowTime(milliseconds time) {
  time_ = time;
  deadline_ = steady_clock::now() + time;
}

void Successor::ReadWords(const StageTime& time) {
  std::array<char, 16> words{};
  const ssize_t count = read(words_.Get(), words.data(), words.size());
  if (count == 0) words_.Close();
  for (ssize_t i = 0; i < count; ++i) {
    SetProgress(static_cast<Progress>(words[static_cast<std::size_t>(i)]), time);
  }
}

bool Successor::HasEndedWithin(milliseconds time) const {
  pollfd life{life_.Get(), POLLIN, 0};
  return poll(&life, 1, static_cast<int>(time.count())) == 1;
}

void Successor::MakeEnd(int signal) {
  kill(process_, signal);
  HasEndedWithin(kGrace);
  KillTree(process_);
}

SuccessorEnd Successor::Await(Progress first, const StageTime& time, int signals) {
  SetProgress(first, time);
  while (true) {
    std::array<pollfd, 3> watched = {
        {{words_.Get(), POLLIN, 0}, {life_.Get(), POLLIN, 0}, {signals, POLLIN, 0}}};
    const int count = poll(watched.data(), watched.size(), isTimed_ ? PollTime(deadline_) : -1);
    if (watched[0].revents != 0) ReadWords(time);
    if (watched[1].revents != 0) break;
    if (watched[2].revents != 0) {
      const int signal = TakeSignal(signals);
      MakeEnd(signal);
      return {progress_, begun_, std::nullopt, signal, 0};
    }
    if (count == 0) {
      MakeEnd(signals >= 0 && progress_ == Progress::kLastStage ? SIGTERM : SIGKILL);
      return {progress_, begun_, time_, 0, 0};
    }
  }
  if (words_.IsOpen()) ReadWords(time);  // what it told between the two looks of poll
  int status = 0;
  waitpid(process_, &status, 0);
  KillChildren();
  return {progress_, begun_, std::nullopt, 0, status};
}

}  // namespace pciinfo
