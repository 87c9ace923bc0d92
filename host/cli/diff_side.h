// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "host/base/exit_status.h"
#include "host/cli/options.h"
#include "host/console/repeatable_input.h"

namespace pciinfo {

/// What `diff` compares.
enum class Compared {
  kMachines,   ///< the machines, from the classes of the topology
  kInstances,  ///< the instances of every other class
};

/// A side as the user named it, opened but not collected.
struct DiffSource {
  std::string name;                          ///< as on the command line
  std::unique_ptr<RepeatableInput> capture;  ///< null for "live"; of a file of JSON not used
  std::string json;                          ///< of a file of JSON; empty for machines

  bool IsMachine() const { return json.empty(); }
  /// Whether it tells of functions or slots of a machine, as saved instances of the inventory alone
  /// do not.
  bool TellsMachine() const;
};

/// One side of a comparison as JSON of instances.
struct DiffSide {
  std::string name;      ///< as on the command line
  std::string identity;  ///< a line of WriteIdentityLine; empty if the side does not tell
  std::string json;
  /// Whether this run collected it: then a missing class has no instances. A saved JSON file may
  /// leave classes out.
  bool isCollected = false;
  bool hasTroubles = false;  ///< whether something could not be collected
};

/// Runs a command as the program would.
using CommandRunner = std::function<ExitStatus(const Options& options)>;

/// Opens the side that a user named: "live" for this machine, a file of JSON, or a capture; "-" for
/// either of the last two from standard input. Throws std::runtime_error, naming the side, when it
/// cannot be read.
DiffSource OpenDiffSource(const std::string& name, const Options& options);

/// Reads a side. Machines are collected by `run`, whose messages get the side's name. Options
/// besides the root are those of `options`. Throws std::runtime_error, naming the side, when it
/// cannot be collected at all.
DiffSide ReadDiffSide(DiffSource source, Compared compared, const Options& options,
                      const CommandRunner& run);

}  // namespace pciinfo
