// SPDX-License-Identifier: Apache-2.0
#include "tests/host/signal_storm.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "runtime/file_descriptor.h"
#include "tests/fakes/run_process.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr const char* kScratchPlace = "/dev/shm";

[[noreturn]] void Become(const SignalStorm::Run& run) {
  std::vector<std::string> words = {PCIINFO_PROGRAM};
  words.insert(words.end(), run.arguments.begin(), run.arguments.end());
  setenv("TERM", "xterm", 1);
  unsetenv("PAGER");
  unsetenv("PCIINFO_PAGER");
  setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // a leak checker that is killed leaves a process
  setenv("LESS", "R", 1);                       // does not end where everything fits on the screen
  for (const int signal : {SIGQUIT, SIGUSR1, SIGALRM, SIGXCPU}) std::signal(signal, SIG_DFL);
  _exit(Execute(words));
}

/// One run, from its start to its end.
class RunningProgram {
 public:
  explicit RunningProgram(const SignalStorm::Run& run) {
    int terminal = -1;
    process_ = run.isOnTerminal ? forkpty(&terminal, nullptr, nullptr, nullptr) : fork();
    if (process_ < 0) throw std::runtime_error("fork failed");
    if (process_ == 0) {
      const int nowhere = open("/dev/null", O_RDWR);
      if (!run.isOnTerminal) {
        for (const int stream : {0, 1, 2}) dup2(nowhere, stream);
      }
      Become(run);
    }
    terminal_ = vtq::FileDescriptor(terminal);
  }

  pid_t GetProcess() const { return process_; }

  /// Lets it run on.
  void Wait(microseconds time) const {
    const auto end = Clock::now() + time;
    while (Clock::now() < end) {
      DrainTerminal();
      std::this_thread::sleep_for(std::min<microseconds>(
          milliseconds(1), std::chrono::ceil<microseconds>(end - Clock::now())));
    }
  }

  /// Waits for its end and asks the pager for it. False when it does not come.
  bool AwaitEnd() {
    const auto end = Clock::now() + std::chrono::seconds(30);
    while (Clock::now() < end) {
      if (waitpid(process_, nullptr, WNOHANG) == process_) return true;
      Wait(milliseconds(1));
      if (terminal_.IsOpen() && write(terminal_.Get(), "q", 1) < 0) continue;
    }
    return false;
  }

  /// Whether lines and echo are as on a new terminal.
  bool IsTerminalUsable() const {
    termios settings{};
    if (!terminal_.IsOpen() || tcgetattr(terminal_.Get(), &settings) != 0) return true;
    return (settings.c_lflag & ICANON) != 0 && (settings.c_lflag & ECHO) != 0;
  }

 private:
  void DrainTerminal() const {
    std::array<char, 4096> piece{};
    pollfd watched{terminal_.Get(), POLLIN, 0};
    while (terminal_.IsOpen() && poll(&watched, 1, 0) == 1) {
      if (read(terminal_.Get(), piece.data(), piece.size()) <= 0) return;
    }
  }

  pid_t process_ = 0;
  vtq::FileDescriptor terminal_;
};

/// The process, or one that descends from it by `generations`, or by as many as there are.
pid_t DescendantOf(pid_t process, int generations) {
  const std::string number = std::to_string(process);
  std::ifstream children("/proc/" + number + "/task/" + number + "/children");
  pid_t child = 0;
  if (generations == 0 || !(children >> child)) return process;
  return DescendantOf(child, generations - 1);
}

std::string CommandLineOf(pid_t process) {
  std::ostringstream words;
  words << std::ifstream("/proc/" + std::to_string(process) + "/cmdline").rdbuf();
  return words.str();
}

class Storm {
 public:
  explicit Storm(const SignalStorm& storm) : storm_(storm), random_(storm.seed) {
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    for (const SignalStorm::Run& run : storm.runs) times_.push_back(TimeOf(run));
  }

  std::vector<std::string> Carry() {
    for (int i = 0; i < storm_.count; ++i) Strike(i);
    return std::move(left_);
  }

 private:
  std::size_t Below(std::size_t limit) { return random_() % limit; }

  /// How long a run takes that nothing disturbs.
  microseconds TimeOf(const SignalStorm::Run& run) {
    const auto start = Clock::now();
    RunningProgram program(run);
    if (!program.AwaitEnd()) throw std::runtime_error("a run without a signal does not end");
    what_ = "no signal";
    Look(false);
    return std::chrono::ceil<microseconds>(Clock::now() - start);
  }

  void Strike(int number) {
    const std::size_t index = static_cast<std::size_t>(number) % storm_.runs.size();
    const SignalStorm::Run& run = storm_.runs[index];
    const int signal = storm_.signals[Below(storm_.signals.size())];
    const microseconds delay(Below(static_cast<std::size_t>(times_[index].count()) * 5 / 4));
    const int generation = storm_.strikesAll ? static_cast<int>(Below(3)) : 0;
    what_ = "signal " + std::to_string(signal) + " after " + std::to_string(delay.count()) +
            " us to generation " + std::to_string(generation) + " of";
    for (const std::string& word : run.arguments) what_ += " " + word;
    RunningProgram program(run);
    program.Wait(delay);
    const bool strikesPager = run.isOnTerminal && !storm_.strikesAll && Below(2) == 0;
    if (strikesPager) {
      kill(-program.GetProcess(), signal);  // the group that the terminal started
    } else {
      kill(DescendantOf(program.GetProcess(), generation), signal);
    }
    if (!program.AwaitEnd()) Leave("the program did not end");
    AwaitOthers();
    // Where the program is killed, the pager is asked to end. Then it restores the terminal, but
    // for a moment at its start in which it handles no signals yet.
    const bool isKilled = signal == SIGKILL;
    if (!isKilled && !program.IsTerminalUsable()) Leave("the terminal is raw");
    Look(isKilled);
  }

  void Leave(const std::string& what) { left_.push_back(what_ + ": " + what); }

  /// What the program has started becomes a child of this process when it has not ended.
  void AwaitOthers() {
    const auto end = Clock::now() + std::chrono::seconds(5);
    while (waitpid(-1, nullptr, WNOHANG) >= 0) {
      std::this_thread::sleep_for(milliseconds(1));
      if (Clock::now() < end) continue;
      const pid_t other = DescendantOf(getpid(), 1);
      Leave("a process goes on: " + CommandLineOf(other));
      kill(other, SIGKILL);
    }
  }

  void Look(bool mayLeaveEmpty) {
    for (const auto& entry : fs::directory_iterator(kScratchPlace)) {
      if (!mayLeaveEmpty || !fs::is_empty(entry)) Leave("left " + entry.path().string());
      fs::remove_all(entry);
    }
    for (const auto& entry : fs::directory_iterator(storm_.directory)) {
      const std::string name = entry.path().filename();
      if (name.find(".part") != std::string::npos) Leave("left " + name);
      fs::remove_all(entry);
    }
  }

  const SignalStorm& storm_;
  std::mt19937 random_;
  std::vector<microseconds> times_;
  std::string what_;
  std::vector<std::string> left_;
};

void Write(const char* file, const std::string& text) { std::ofstream(file) << text; }

}  // namespace

std::vector<std::string> LeftBehind(const SignalStorm& storm) { return Storm(storm).Carry(); }

bool HaveOwnScratchPlace() {
  const std::string user = std::to_string(geteuid());
  const std::string group = std::to_string(getegid());
  if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
  Write("/proc/self/setgroups", "deny");
  Write("/proc/self/uid_map", "0 " + user + " 1");
  Write("/proc/self/gid_map", "0 " + group + " 1");
  return mount("tmpfs", kScratchPlace, "tmpfs", 0, nullptr) == 0;
}
