// The program `pciinfo`: reads its command line and runs the command.

#include <unistd.h>

#include <csignal>
#include <variant>

#include "host/base/errors.h"
#include "host/cli/commands.h"
#include "host/cli/options.h"
#include "host/console/output.h"
#include "host/process/guarded_run.h"
#include "host/process/process_end.h"

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
  std::signal(SIGPIPE, SIG_IGN);  // a closed pipe shows as a failed write
  return EndProcess(RunGuarded([&] { return Run(argc, argv); }));
}
