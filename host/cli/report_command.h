// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/base/exit_status.h"
#include "host/cli/options.h"

namespace pciinfo {

/// What `report` needs of other commands.
struct ReportRunners {
  /// Collects a machine and writes its page, or its part of one, to the file that `openFile`
  /// answers. Answers kPageWithTroubles too.
  std::function<ExitStatus(const Options& machine, const std::function<int()>& openFile)> view;
  /// Prints what differs between two captures.
  std::function<ExitStatus(const Options& sides)> diff;
};

/// Writes the page that the options ask for. A file has its name when it is complete (see NewFile).
/// Throws UsageError and std::exception.
ExitStatus RunReport(const Options& options, const ReportRunners& runners);

/// Returns the captures that the user named; a directory that is no capture stands for the archives
/// in it, in the order of their names. Throws UsageError for one without any.
std::vector<std::string> CapturesIn(const std::vector<std::string>& names);

}  // namespace pciinfo
