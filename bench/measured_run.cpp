// SPDX-License-Identifier: Apache-2.0
#include "bench/measured_run.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numeric>
#include <system_error>

#include "bench/lspci_places.h"
#include "host/replay/root_namespace.h"
#include "runtime/file_descriptor.h"

namespace fs = std::filesystem;

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;
using vtq::FileDescriptor;

[[noreturn]] void ThrowErrno(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

void RedirectAndRun(const Command& command, int output) {
  const int nothing = open("/dev/null", O_RDWR);
  dup2(nothing, STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  dup2(nothing, STDERR_FILENO);
  std::vector<char*> arguments;
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  execvp(arguments.front(), arguments.data());
  _exit(127);
}

std::uint64_t CountBytes(int descriptor) {
  static std::array<char, 1 << 16> buffer;
  std::uint64_t bytes = 0;
  while (true) {
    const ssize_t count = read(descriptor, buffer.data(), buffer.size());
    if (count == 0 || (count < 0 && errno != EINTR)) return bytes;
    if (count > 0) bytes += static_cast<std::uint64_t>(count);
  }
}

double Seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

}  // namespace

Taken Measure(const Command& command) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) ThrowErrno("a pipe");
  const FileDescriptor reading(ends[0]);
  FileDescriptor writing(ends[1]);
  const Clock::time_point start = Clock::now();
  const pid_t process = fork();
  if (process < 0) ThrowErrno(command.front());
  if (process == 0) RedirectAndRun(command, writing.Get());
  writing.Close();

  Taken taken;
  taken.outputBytes = CountBytes(reading.Get());
  rusage usage{};
  if (wait4(process, &taken.status, 0, &usage) < 0) ThrowErrno(command.front());
  taken.wallSeconds = std::chrono::duration<double>(Clock::now() - start).count();
  taken.cpuSeconds = Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
  taken.peakBytes = static_cast<std::uint64_t>(usage.ru_maxrss) * 1024;
  if (WIFEXITED(taken.status) && WEXITSTATUS(taken.status) == 127) {
    std::string words;
    for (const std::string& word : command) words += (words.empty() ? "" : " ") + word;
    throw std::runtime_error("\"" + words +
                             "\" cannot be started: bench/run installs what it needs");
  }
  return taken;
}

LspciCounter::LspciCounter(const std::string& wrapper) {
  pciinfo::MountMemory(kBenchDirectory);
  std::ofstream(kRealLspci).flush();
  std::ofstream(kLspciNotes).flush();
  pciinfo::ShowAt(kLspci, kRealLspci);
  pciinfo::ShowAt(wrapper, kLspci);
}

LspciCounter::~LspciCounter() {
  umount2(kLspci, MNT_DETACH);
  umount2(kRealLspci, MNT_DETACH);
  umount2(kBenchDirectory, MNT_DETACH);
}

Taken LspciCounter::Measure(const Command& command) {
  fs::resize_file(kLspciNotes, 0);
  Taken taken = bench::Measure(command);
  std::ifstream notes(kLspciNotes);
  taken.lspciSeconds = std::accumulate(std::istream_iterator<double>(notes), {}, 0.0);
  return taken;
}

}  // namespace bench
