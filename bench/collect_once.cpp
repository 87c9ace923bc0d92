// bench_collect CLASS...: what `pciinfo instances CLASS... --format json` does, in one process.
//
// The program works in a separate process and watches it with system calls that valgrind 3.19 does
// not support. The work that grows with the machine is the same.

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <exception>

#include "host/collect/query_order.h"
#include "host/collect/session.h"
#include "host/console/output.h"
#include "host/formats/instance_writer.h"
#include "host/schema/pci_schema.h"

namespace {

using namespace pciinfo;

[[noreturn]] void CollectAndPrint(const std::vector<std::string>& classes) {
  const QueryPlan plan = PlanQuery(PciSchema(), classes);
  TroubleReport report(true, false);
  Session session(report, {});
  session.Load(BENCH_PLUGIN);
  session.Collect(plan.collect);
  Output output(STDOUT_FILENO);
  WriteInstances(session.GetRepository(), plan.print, *MakeInstanceWriter("json", output));
  output.Flush();
  session.EndPlugins();
  _exit(0);  // like the program, which exits without freeing its memory
}

}  // namespace

int main(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);
  try {
    CollectAndPrint({argv + 1, argv + argc});
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "bench_collect: %s\n", failure.what());
    return 1;
  }
}
