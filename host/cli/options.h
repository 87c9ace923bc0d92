// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "host/check/finding.h"
#include "host/collect/plugin_files.h"
#include "host/console/terminal.h"
#include "host/fleet/questions.h"
#include "host/model/filter.h"
#include "host/views/slots_view.h"

namespace CLI {
class App;
}

namespace pciinfo {

enum class Command {
  kOverview,
  kDevices,
  kInstances,
  kClasses,
  kSlots,
  kTree,
  kShow,
  kCapture,
  kSchema,
  kCheck,
  kMetrics,
  kDiff,
  kReport,
  kStore,
  kFleet
};

#ifdef PCIINFO_SANITIZED
/// AddressSanitizer reserves terabytes of address space, so no limit is possible.
inline constexpr std::uint64_t kDefaultMemoryLimit = 0;
#else
inline constexpr std::uint64_t kDefaultMemoryLimit = 4096;
#endif

/// Converts a limit from MiB to bytes; nothing for 0, which means no limit.
inline std::optional<std::uint64_t> BytesOfLimit(std::uint64_t mebibytes) {
  if (mebibytes == 0) return std::nullopt;
  return mebibytes << 20U;
}

/// The parsed command line.
struct Options {
  Command command = Command::kOverview;
  std::vector<std::string> classes;  ///< of `instances`; empty: see `showAll`
  std::string format = "table";      ///< of `instances` and the views
  std::string schemaFormat = "mof";  ///< of `schema`
  PluginOptions plugins;
  std::string logFile;                              ///< empty: none
  std::optional<int> logLevel;                      ///< 0 to 4; not set: errors and warnings
  double timeout = 600;                             ///< seconds for all collecting
  std::uint64_t memoryLimit = kDefaultMemoryLimit;  ///< MiB of each process; 0: none
  bool isVerbose = false;                           ///< with --version
  bool inProcess = false;                           ///< no worker: for debuggers
  std::string root;                         ///< a capture to show in the place of this machine
  bool liveCommands = false;                ///< with `root`: run commands instead of replaying them
  std::string captureFile;                  ///< of `capture`
  bool redact = false;                      ///< of `capture` and `store`
  std::string reportFile;                   ///< of `report`
  std::vector<std::string> reportCaptures;  ///< of `report`; empty: this machine
  std::optional<std::size_t> reportPart;    ///< of `report`: write the part of this machine only
  std::string storeTarget;                  ///< of `store`: the database
  std::vector<std::string> storeSources;    ///< of `store`; empty: this machine
  // Of `diff`: the two sides, and the properties that are not compared.
  std::string diffBefore;
  std::string diffAfter;
  std::vector<std::string> ignored;
  std::string database;  ///< of `fleet`
  FleetRequest fleet;
  // Of `check`: whether it checks the seven classes, what it shows, and what makes it fail.
  bool checksClasses = false;
  FindingChoice findingChoice;
  Severity failOn = Severity::kWarning;
  std::string target;  ///< of `show`: an address, a slot, or an object path
  /// Of `tree`: every function on its line; of `instances`: every class; of `diff`: every property.
  bool showAll = false;
  SlotChoice slotChoice = SlotChoice::kAll;  ///< of `slots`
  std::vector<std::string> columns;          ///< of `devices` and `slots`; empty: the usual ones
  Filter filter;
  TerminalWishes terminal;
};

/// The result for a command line that asks for help or the version, or that is wrong.
struct Answer {
  bool isError = false;
  std::string text;  ///< help or version with line ends; or an error message without one
};

/// Returns the definitions of all commands and options. Parsing fills `options`. The manual page
/// and the shell completions are made from the same definitions.
std::shared_ptr<CLI::App> BuildApp(Options& options);

/// Parses a command line.
std::variant<Options, Answer> ParseOptions(int argc, const char* const* argv);

}  // namespace pciinfo
