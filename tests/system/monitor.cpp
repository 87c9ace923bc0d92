// SPDX-License-Identifier: Apache-2.0
#include "tests/system/monitor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <stdexcept>

namespace {

/// Opened for both directions, a pipe does not wait for its other end.
int MakePipe(const std::string& path) {
  if (mkfifo(path.c_str(), 0600) != 0) throw std::runtime_error("cannot make the pipe " + path);
  const int file = open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) throw std::runtime_error("cannot open the pipe " + path);
  return file;
}

bool HasLine(const std::filesystem::path& file, const std::string& wanted) {
  std::ifstream stream(file);
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with(wanted)) return true;
  }
  return false;
}

}  // namespace

Monitor::Monitor(const std::filesystem::path& directory)
    : pipe_(directory / "monitor"),
      input_(MakePipe(pipe_.string() + ".in")),
      output_(MakePipe(pipe_.string() + ".out")) {}

Monitor::~Monitor() {
  close(input_);
  close(output_);
}

std::vector<std::string> Monitor::Options() const {
  return {"-chardev", "pipe,id=monitor,path=" + pipe_.string(), "-mon",
          "chardev=monitor,mode=control"};
}

void Monitor::SendWhenReady(const std::filesystem::path& console, const nlohmann::json& commands) {
  if (isSent_ || !HasLine(console, "ready for changes")) return;
  isSent_ = true;
  std::string text = R"({"execute": "qmp_capabilities"})";
  for (const nlohmann::json& command : commands) text += "\n" + command.dump();
  text += "\n";
  if (write(input_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    throw std::runtime_error("the emulator does not take commands");
  }
}

std::string Monitor::ReadAnswers() const {
  std::string answers;
  std::array<char, 4096> part{};
  for (ssize_t size = 1; size > 0;) {
    size = read(output_, part.data(), part.size());
    if (size > 0) answers.append(part.data(), static_cast<std::size_t>(size));
  }
  return answers;
}
