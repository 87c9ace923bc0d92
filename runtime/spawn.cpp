// SPDX-License-Identifier: Apache-2.0
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <new>
#include <system_error>
#include <utility>

#include "framework/os_specific.h"
#include "runtime/command_line.h"
#include "runtime/command_replay.h"
#include "runtime/command_run.h"
#include "runtime/service_failures.h"

namespace NQZMVTQ20 {

namespace {

using vtq::CommandRun;

[[noreturn]] void Fail(const std::string& command, const std::string& reason,
                       TVTQStatusCode::EVTQStatusCode code = TVTQStatusCode::kFailure) {
  vtq::FailService("the command \"" + command + "\" " + reason, code);
}

std::unique_ptr<CommandRun> Start(const std::string& command) {
  const std::vector<std::string> words = vtq::SplitCommand(command);
  if (words.empty()) {
    Fail(command, "cannot be started: it names no program", TVTQStatusCode::kInvalidArgument);
  }
  const std::string file = vtq::FindProgram(words.front());
  if (file.empty()) {
    Fail(command, std::string("cannot be started: not found in ") + vtq::kProgramSearchPath,
         TVTQStatusCode::kNotFound);
  }
  try {
    return std::make_unique<CommandRun>(words, file);
  } catch (const std::system_error& error) {
    Fail(command, "cannot be started: " + error.code().message(),
         vtq::StatusOfErrno(error.code().value()));
  }
}

/// Whether or not there is output decides: a listing tool exits so when it cannot read a single
/// function, and has listed all others.
void JudgeFailedRun(const std::string& command, int status, CommandRun& run) {
  const std::string line = run.FirstErrorLine();
  const std::string exited = "exited with status " + std::to_string(status);
  const std::string why = line.empty() ? "" : ": " + line;
  if (run.Output().empty()) Fail(command, exited + " and printed nothing" + why);
  vtq::ReportDoubtfulOutput("the command \"" + command + "\" " + exited +
                            ", so its output may be incomplete" + why);
}

std::string RunToEnd(const std::string& command, CommandRun& run, int seconds) {
  const bool ended = run.Drain(std::chrono::steady_clock::now() + std::chrono::seconds(seconds));
  const int status = run.Finish();
  if (!ended) Fail(command, "ran out of time after " + std::to_string(seconds) + " seconds");
  if (WIFSIGNALED(status)) {
    Fail(command, "died by signal " + std::to_string(WTERMSIG(status)));
  }
  if (WEXITSTATUS(status) != 0) JudgeFailedRun(command, WEXITSTATUS(status), run);
  return std::move(run.Output());
}

}  // namespace

std::string TOSSpecific::SpawnProcess(const std::string& command, int seconds) {
  if (std::optional<std::string> recorded = vtq::RecordedOutput(command)) return *recorded;
  try {
    const std::unique_ptr<CommandRun> run = Start(command);
    return RunToEnd(command, *run, std::max(seconds, 0));
  } catch (const std::system_error& error) {
    Fail(command, "could not be followed to its end: " + error.code().message());
  } catch (const std::bad_alloc&) {
    // What was kept of the output is free again by now.
    Fail(command, "printed more than there is memory for");
  }
}

}  // namespace NQZMVTQ20
