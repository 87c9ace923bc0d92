// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <csignal>
#include <variant>

#include "host/base/errors.h"
#include "host/cli/commands.h"
#include "host/cli/options.h"
#include "host/console/output.h"
#include "host/process/end_process.h"
#include "host/process/guarded_run.h"
#include "host/process/supervisor.h"

namespace {

using namespace pciinfo;

ExitStatus Reply(const Answer& answer) {
  if (answer.isError) throw UsageError(answer.text);
  Output output(STDOUT_FILENO);
  output.Write(answer.text);
  output.Flush();
  return kAllCollected;
}

ExitStatus Run(int argc, const char* const* argv) {
  const std::variant<Options, Answer> parsed = ParseOptions(argc, argv);
  if (const Answer* answer = std::get_if<Answer>(&parsed)) return Reply(*answer);
  return RunCommand(std::get<Options>(parsed));
}

}  // namespace

int main(int argc, char** argv) {
  ReserveStandardStreams();
  // A closed pipe and a file that gets too large show as failed writes.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  try {
    EndProcess(RunGuarded([&] { return Run(argc, argv); }));
  } catch (const EndedBySignal& end) {
    EndBySignal(end.signal);
    EndProcess(kFailed);
  }
}
