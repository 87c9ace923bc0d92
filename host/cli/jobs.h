#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/base/exit_status.h"
#include "host/cli/options.h"
#include "host/collect/session.h"
#include "host/console/output.h"

namespace pciinfo {

/// A command as what it needs collected and how it prints that.
struct Job {
  std::vector<std::string> collect;
  std::function<void(const Session& session, Output& output)> print;
  /// The list of functions shows nothing of slots: that they are unknown is no news for its reader.
  bool showsSlots = true;
  /// What the program answers when all was collected and printed; none: kAllCollected.
  std::function<ExitStatus()> answer = nullptr;
  /// What could not be read is part of what the user sees and is not told again.
  bool showsTroubles = false;
};

/// The job of a command that prints what was collected. Throws UsageError for a class that is not
/// declared, and std::runtime_error when classes that the command needs are not. `plugins` must
/// outlive the job.
Job MakeJob(const Options& options, const PluginSet& plugins, const Terminal& terminal);

/// Throws std::runtime_error unless the classes of functions, slots and the board are declared,
/// which all views are made of; it says what to do.
void RequireViewClasses(const PluginSet& plugins);

}  // namespace pciinfo
