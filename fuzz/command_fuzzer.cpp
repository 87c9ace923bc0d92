// SPDX-License-Identifier: Apache-2.0

// Commands: their words, their programs, and their recordings.
#include <filesystem>
#include <map>
#include <optional>

#include "fuzz/fuzz.h"
#include "fuzz/models.h"
#include "runtime/command_line.h"
#include "runtime/command_replay.h"
#include "tests/runtime/temporary_directory.h"

namespace {

namespace fs = std::filesystem;

using fuzz::Require;

// Two recordings, and three that must not be used: a directory, a link, and a file outside.
class Recordings final {
 public:
  Recordings() {
    fs::create_directories(recordings_ + "/lspci -v");
    for (const auto& [command, output] : outputs_) directory_.Write("r/" + command, output);
    fs::create_symlink(directory_.Write("secret", "secret"), recordings_ + "/link");
    vtq::ReplayCommandsFrom(recordings_);
  }

  std::optional<std::string> OutputOf(const std::string& command) const {
    const auto found = outputs_.find(command);
    if (found == outputs_.end()) return std::nullopt;
    return found->second;
  }

 private:
  const std::map<std::string, std::string> outputs_ = {{"lspci", "list\n"}, {"lspci -xxxx", ""}};
  vtq::TemporaryDirectory directory_;
  std::string recordings_ = directory_.GetPath() + "/r";
};

void CheckProgram(const std::string& name) {
  const std::string program = vtq::FindProgram(name);
  if (name.starts_with('/')) return Require(program == name, "an absolute path is not changed");
  if (program.empty()) return;
  Require(name.find('/') == std::string::npos, "a relative path is no program");
  Require(fs::path(program).is_absolute(), "a program is an absolute path");
  Require(name.find('\0') == std::string::npos, "no file has a zero in its name");
  Require(program.ends_with("/" + name), "of that name");
}

}  // namespace

void fuzz::CheckInput(std::string_view input) {
  static const Recordings recordings;
  const std::string command(input);
  const std::vector<std::string> words = vtq::SplitCommand(command);
  Require(words == PlainTokens(input, " \t"), "words are the texts between spaces and tabs");
  Require(vtq::RecordedOutput(command) == recordings.OutputOf(command),
          "exactly the recordings are replayed");
  if (!words.empty()) CheckProgram(words[0]);
}
