#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/base/exit_status.h"
#include "host/cli/options.h"
#include "host/collect/session.h"
#include "host/console/output.h"
#include "host/schema/pci_schema.h"

namespace pciinfo {

/// What a command needs collected and how it prints that.
struct Job {
  std::vector<std::string> collect;
  std::function<void(const Session& session, Output& output)> print;
  /// Whether the output shows slots. If not, troubles about slots are not reported.
  bool showsSlots = true;
  std::vector<vtq::ClassSchema> classes = PciSchema();
  /// The exit status when everything was collected and printed; empty: kAllCollected.
  std::function<ExitStatus()> answer = nullptr;
  /// Whether the output itself shows the troubles, so that they are not repeated as messages.
  bool showsTroubles = false;
};

/// Makes the job of a command that prints collected instances. Reads class files. Throws UsageError
/// for a class that is not declared, and what DeclaredClasses throws.
Job MakeJob(const Options& options, const Terminal& terminal);

}  // namespace pciinfo
