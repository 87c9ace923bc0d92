// A plug-in that provides all classes and misbehaves at one point. The build sets the act
// (HOSTILE_ACT) and the point (HOSTILE_PLACE: Init, DeInit, or a class).
#include <sys/mman.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <new>

#include "tests/host/plugins/fake_plugin.h"

namespace {

namespace act {

[[maybe_unused]] void Abort() { std::abort(); }

[[maybe_unused]] void Exit() { std::exit(0); }

[[maybe_unused]] void Hang() {
  std::signal(SIGTERM, SIG_IGN);
  while (true) pause();
}

// Prevents an optimizer from removing an allocation that is not used.
[[maybe_unused]] char* volatile seen = nullptr;

/// Allocates until memory is exhausted and frees nothing.
[[maybe_unused]] void Flood() {
  constexpr std::size_t kPiece = 4U << 20U;
  while (true) seen = new char[kPiece];
}

/// The same by system calls, without an exception.
[[maybe_unused]] void Hoard() {
  constexpr std::size_t kPiece = 4U << 20U;
  constexpr int kFlags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;
  while (mmap(nullptr, kPiece, PROT_NONE, kFlags, -1, 0) != MAP_FAILED) {
  }
}

/// Leaves a process behind that has left its process group and session and keeps all files open.
[[maybe_unused]] void LeaveProcess() {
  const pid_t child = fork();
  if (child != 0) return fake::Log(3, "left behind: " + std::to_string(child));
  std::signal(SIGTERM, SIG_IGN);
  setsid();
  while (true) pause();
}

[[maybe_unused]] void LeaveProcessAndAbort() {
  LeaveProcess();
  std::abort();
}

[[maybe_unused]] void CloseFiles() { close_range(STDERR_FILENO + 1, ~0U, 0); }

[[maybe_unused]] void WriteFile() {
  std::ofstream("litter.txt") << "litter\n";
  fake::Log(3, "wrote into: " + std::filesystem::current_path().string());
}

/// Text that stays in the buffer of stdout until the program exits.
[[maybe_unused]] void PrintToStdout() { std::fputs("unasked", stdout); }

}  // namespace act

class Hostile final : public fake::FakePlugin {
  void Init() override { ActIn("Init"); }
  void DeInit() override { ActIn("DeInit"); }
  void Serve(NQZMVTQ20::ICIMClass& cimClass) override {
    ActIn(cimClass.GetName({}).c_str());
    FakePlugin::Serve(cimClass);
  }

  static void ActIn(const char* place) {
    if (std::strcmp(place, HOSTILE_PLACE) == 0) act::HOSTILE_ACT();
  }
};

}  // namespace

FAKE_PLUGIN(Hostile)
