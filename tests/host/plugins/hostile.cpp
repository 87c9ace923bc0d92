// SPDX-License-Identifier: Apache-2.0

// A plug-in that provides all classes and misbehaves as the environment variable HOSTILE says:
// first what it does, then where (Init, DeInit, or classes), as in "Abort QZMSG_SystemSlot".
#include <sys/mman.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <new>
#include <set>
#include <sstream>
#include <string>

#include "tests/host/plugins/fake_plugin.h"

namespace {

namespace act {

void Abort() { std::abort(); }

void Exit() { std::exit(0); }

void Hang() {
  std::signal(SIGTERM, SIG_IGN);
  while (true) pause();
}

// Prevents an optimizer from removing an allocation that is not used.
char* volatile seen = nullptr;

/// Allocates until memory is exhausted and frees nothing.
void Flood() {
  constexpr std::size_t kPiece = 4U << 20U;
  while (true) seen = new char[kPiece];
}

/// The same by system calls, without an exception.
void Hoard() {
  constexpr std::size_t kPiece = 4U << 20U;
  constexpr int kFlags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;
  while (mmap(nullptr, kPiece, PROT_NONE, kFlags, -1, 0) != MAP_FAILED) {
  }
}

/// Leaves a process behind that has left its process group and session and keeps all files open.
void LeaveProcess() {
  const pid_t child = fork();
  if (child != 0) return fake::Log(3, "left behind: " + std::to_string(child));
  std::signal(SIGTERM, SIG_IGN);
  setsid();
  while (true) pause();
}

void LeaveProcessAndAbort() {
  LeaveProcess();
  std::abort();
}

void CloseFiles() { close_range(STDERR_FILENO + 1, ~0U, 0); }

void WriteFile() {
  std::ofstream("litter.txt") << "litter\n";
  fake::Log(3, "wrote into: " + std::filesystem::current_path().string());
}

/// Runs the shell command of another environment variable, as a tool that a plug-in uses.
void RunCommand() {
  const char* const command = std::getenv("HOSTILE_COMMAND");
  [[maybe_unused]] const int ignored = std::system(command == nullptr ? "" : command);
}

/// Text that stays in the buffer of stdout until the program exits.
void PrintToStdout() { std::fputs("unasked", stdout); }

}  // namespace act

const std::map<std::string, void (*)()> kActs = {
    {"Abort", act::Abort},
    {"Exit", act::Exit},
    {"Hang", act::Hang},
    {"Flood", act::Flood},
    {"Hoard", act::Hoard},
    {"LeaveProcess", act::LeaveProcess},
    {"LeaveProcessAndAbort", act::LeaveProcessAndAbort},
    {"CloseFiles", act::CloseFiles},
    {"WriteFile", act::WriteFile},
    {"RunCommand", act::RunCommand},
    {"PrintToStdout", act::PrintToStdout},
};

class Hostile final : public fake::FakePlugin {
 public:
  Hostile() {
    const char* const plan = std::getenv("HOSTILE");
    std::istringstream words(plan == nullptr ? "" : plan);
    words >> act_;
    for (std::string place; words >> place;) places_.insert(place);
  }

 private:
  void Init() override { ActIn("Init"); }
  void DeInit() override { ActIn("DeInit"); }
  void Serve(NQZMVTQ20::ICIMClass& cimClass) override {
    ActIn(cimClass.GetName({}));
    FakePlugin::Serve(cimClass);
  }

  void ActIn(const std::string& place) const {
    if (places_.count(place) != 0) kActs.at(act_)();
  }

  std::string act_;
  std::set<std::string> places_;
};

}  // namespace

FAKE_PLUGIN(Hostile)
