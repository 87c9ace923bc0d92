#include "runtime/command_ahead.h"

#include <exception>
#include <utility>
#include <vector>

#include "runtime/command_line.h"
#include "runtime/command_replay.h"
#include "runtime/file_descriptor.h"
#include "runtime/process_descriptor.h"

namespace vtq {

namespace {

struct CommandAhead {
  std::string command;
  std::unique_ptr<CommandRun> run;
  FileDescriptor life;  // of the program; closed when its end was passed on
};

CommandAhead ahead;

}  // namespace

void StartCommandAhead(const std::string& command) noexcept {
  if (ahead.run && ahead.command == command) return;
  EndCommandAhead();
  try {
    if (IsRecorded(command)) return;
    const std::vector<std::string> words = SplitCommand(command);
    const std::string file = words.empty() ? "" : FindProgram(words.front());
    if (file.empty()) return;
    auto run = std::make_unique<CommandRun>(words, file);
    FileDescriptor life = OpenProcess(run->GetChild().GetLeader());
    if (life.IsOpen()) ahead = {command, std::move(run), std::move(life)};
  } catch (const std::exception&) {
    return;  // SpawnProcess meets the same, and says so
  }
}

void EndCommandAhead() noexcept { ahead = {}; }

int GetCommandAheadLife() noexcept {
  return ahead.run && ahead.run->GetChild().IsStarter() ? ahead.life.Get() : -1;
}

void PassOnCommandAheadEnd() noexcept {
  ahead.run->GetChild().PassOnEnd();
  ahead.life.Close();
}

std::unique_ptr<CommandRun> TakeCommandAhead(const std::string& command) noexcept {
  if (!ahead.run || ahead.command != command) return nullptr;
  ahead.life.Close();
  return std::move(ahead.run);
}

}  // namespace vtq
