// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/base/exit_status.h"
#include "host/cli/options.h"
#include "host/collect/session.h"
#include "host/console/output.h"

namespace pciinfo {

/// What a command needs collected and how it prints that.
struct Job {
  std::vector<std::string> collect;
  std::function<void(const Session& session, Output& output)> print;
  /// The exit status when everything was collected and printed; empty: kAllCollected.
  std::function<ExitStatus()> answer = nullptr;
  /// The exit status when something could not be collected.
  ExitStatus troubled = kFailed;
  /// Whether the output itself shows the troubles, so that they are not repeated as messages.
  bool showsTroubles = false;
  /// Whether every plug-in is loaded, also one that serves none of the classes.
  bool loadsAll = false;
};

/// Exit status of the job of `report` for a page that is complete but for what could not be
/// collected.
inline constexpr auto kPageWithTroubles = static_cast<ExitStatus>(10);

/// Makes the job of a command that prints collected instances. Throws UsageError for a class that
/// is not declared, and std::runtime_error when classes that the command needs are not. `plugins`
/// must outlive the job.
Job MakeJob(const Options& options, const PluginSet& plugins, const Terminal& terminal);

/// Throws std::runtime_error unless the classes of the inventory are declared, which
/// `check --classes` and `diff` of saved instances read; it says what to do.
void RequireInventoryClasses(const PluginSet& plugins);

/// The same for the classes of machines that `diff` reads.
void RequireMachineClasses(const PluginSet& plugins);

}  // namespace pciinfo
