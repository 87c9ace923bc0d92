#include "runtime/command_ahead.h"

#include <unistd.h>

#include <exception>
#include <utility>
#include <vector>

#include "runtime/command_line.h"
#include "runtime/command_replay.h"

namespace vtq {

namespace {

struct CommandAhead {
  std::string command;
  pid_t starter = -1;  // only this process can learn how the program ends
  std::unique_ptr<CommandRun> run;
};

CommandAhead ahead;

}  // namespace

void StartCommandAhead(const std::string& command) noexcept {
  ahead.run.reset();
  try {
    if (IsRecorded(command)) return;
    const std::vector<std::string> words = SplitCommand(command);
    const std::string file = words.empty() ? "" : FindProgram(words.front());
    if (file.empty()) return;
    ahead = {command, ::getpid(), std::make_unique<CommandRun>(words, file)};
  } catch (const std::exception&) {
    return;  // SpawnProcess meets the same, and says so
  }
}

std::unique_ptr<CommandRun> TakeCommandAhead(const std::string& command) noexcept {
  if (!ahead.run || ahead.command != command) return nullptr;
  std::unique_ptr<CommandRun> run = std::move(ahead.run);
  if (ahead.starter != ::getpid()) run.reset();
  return run;
}

}  // namespace vtq
