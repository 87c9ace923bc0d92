// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>

#include "host/base/exit_status.h"
#include "host/cli/options.h"

namespace pciinfo {

/// One side of a comparison as JSON of instances.
struct DiffSide {
  std::string name;  ///< as on the command line
  std::string json;
  /// Whether this run collected it: then a missing class has no instances. A saved JSON file may
  /// leave classes out.
  bool isCollected = false;
  bool hasTroubles = false;  ///< whether something could not be collected
};

/// Runs a command as the program would.
using CommandRunner = std::function<ExitStatus(const Options& options)>;

/// Reads the side that a user named: "live" for this machine, a file of JSON, or a capture; "-" for
/// either of the last two from standard input. Machines are collected by `run`, whose messages
/// get the side's name. Options besides the root are those of
/// `options`. Throws std::runtime_error, naming the side, when it cannot be read at all.
DiffSide ReadDiffSide(const std::string& name, const Options& options, const CommandRunner& run);

}  // namespace pciinfo
