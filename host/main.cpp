// The program `pciinfo`: reads its command line and runs the command.

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <string_view>
#include <vector>

#include "host/commands.h"
#include "host/guarded_run.h"
#include "host/listing_ahead.h"
#include "host/options.h"
#include "host/output.h"
#include "host/process_end.h"
#include "host/query_order.h"
#include "runtime/command_ahead.h"

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
  StartListingFor(std::vector<std::string_view>(argv + std::min(argc, 1), argv + argc));
  const std::variant<Options, Answer> parsed = ParseOptions(argc, argv);
  if (const Answer* answer = std::get_if<Answer>(&parsed)) return Reply(*answer);
  return RunCommand(std::get<Options>(parsed));
}

}  // namespace

int main(int argc, char** argv) {
  ReserveStandardStreams();
  std::signal(SIGPIPE, SIG_IGN);  // a closed pipe shows as a failed write
  const ExitStatus status = RunGuarded([&] { return Run(argc, argv); });
  vtq::EndCommandAhead();  // the listing, after a wrong command line
  return EndProcess(status);
}
