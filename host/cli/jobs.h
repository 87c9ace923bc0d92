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

/// A command as what it needs collected and how it prints that.
struct Job {
  std::vector<std::string> collect;
  std::function<void(const Session& session, Output& output)> print;
  /// The list of functions shows nothing of slots: that they are unknown is no news for its reader.
  bool showsSlots = true;
  std::vector<vtq::ClassSchema> classes = PciSchema();
  /// What the program answers when all was collected and printed; none: kAllCollected.
  std::function<ExitStatus()> answer = nullptr;
  /// What could not be read is part of what the user sees and is not told again.
  bool showsTroubles = false;
};

/// The job of a command that prints what was collected. Reads class files. Throws UsageError for a
/// class that is not served, and what DeclaredClasses throws.
Job MakeJob(const Options& options, const Terminal& terminal);

}  // namespace pciinfo
