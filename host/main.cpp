// The program `pciinfo`: reads its command line and runs the command.

#include <unistd.h>

#include <csignal>
#include <exception>
#include <new>

#include "host/commands.h"
#include "host/options.h"
#include "host/output.h"
#include "host/query_order.h"

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
  try {
    return Run(argc, argv);
  } catch (const UsageError& error) {
    WriteMessage(error.what());
    return kWrongUsage;
  } catch (const ClosedPipe&) {
    return kPipeClosed;
  } catch (const std::bad_alloc&) {
    WriteMessage("there is not enough memory (see --memory-limit)");
    return kFailed;
  } catch (const std::exception& error) {
    WriteMessage(error.what());
    return kFailed;
  }
}
