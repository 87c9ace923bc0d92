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

/// Runs a command like the program does.
using CommandRunner = std::function<ExitStatus(Options options)>;

/// Reads a side: "live" for this machine, a JSON file, or a capture; "-" for either of the last two
/// from standard input. A machine is collected by `run` in a separate process; its messages are
/// passed on with the side's name. Uses `options`, apart from the root. Throws std::runtime_error,
/// naming the side, when it cannot be read.
DiffSide ReadDiffSide(const std::string& name, const Options& options, const CommandRunner& run);

}  // namespace pciinfo
