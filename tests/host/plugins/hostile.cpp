// A plug-in that serves everything, except that at one point of its life it does what the build
// says: HOSTILE_ACT, where HOSTILE_PLACE (Init, DeInit, or a class to serve) says.
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

// An optimizer may leave out memory that nobody sees.
[[maybe_unused]] char* volatile seen = nullptr;

/// Takes all memory that there is and keeps it.
[[maybe_unused]] void Flood() {
  constexpr std::size_t kPiece = 4U << 20U;
  while (true) seen = new char[kPiece];
}

/// The same, but by its own means and without a word.
[[maybe_unused]] void Hoard() {
  constexpr std::size_t kPiece = 4U << 20U;
  constexpr int kFlags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;
  while (mmap(nullptr, kPiece, PROT_NONE, kFlags, -1, 0) != MAP_FAILED) {
  }
}

/// Leaves a process behind that has left its group and its session, and that holds all files open.
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

/// Text that stays in the buffer of standard output until the program ends.
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
