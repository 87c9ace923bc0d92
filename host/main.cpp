#include <unistd.h>

#include <csignal>
#include <variant>

#include "host/commands.h"
#include "host/guarded_run.h"
#include "host/options.h"
#include "host/output.h"
#include "host/query_order.h"
#include "host/supervisor.h"

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
    return RunGuarded([&] { return Run(argc, argv); });
  } catch (const EndedBySignal& end) {
    EndBySignal(end.signal);
    return kFailed;
  }
}
