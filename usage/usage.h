// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace pciinfo {

/// The kinds of values that shells complete differently.
enum class ValueKind {
  kNothing,
  kChoice,
  kList,  ///< choices, with commas between them
  kFile,
  kClass,
  kCode,   ///< of a finding
  kKeys,   ///< KEY=VALUE, with commas between them
  kThing,  ///< something of the machine, which the program lists
  kOther
};

/// An option or a positional argument.
struct UsageOption {
  std::vector<std::string> names;  ///< "-h", "--help"; for an argument: its only name, "FILE"
  std::string valueName;           ///< empty for a flag
  std::string description;
  std::string defaultText;           ///< empty when there is none
  std::vector<std::string> choices;  ///< empty if any value is allowed
  std::vector<std::string> keys;     ///< "state=", of the kind kKeys; empty: those of the program
  ValueKind kind = ValueKind::kNothing;
  bool isRequired = false;
  bool isRepeatable = false;
};

/// The program or one of its commands. Options of the program may follow every command, so a
/// command lists only its own options, and those that have other choices or another meaning there.
struct UsageCommand {
  std::string name;
  std::string description;
  std::vector<UsageOption> options;
  std::vector<UsageOption> arguments;
  std::string footer;
};

/// The command line syntax, read from the definitions of the options.
struct Usage {
  UsageCommand program;
  std::vector<UsageCommand> commands;
  std::vector<std::string> classes;  ///< completions of a value of the kind kClass
  std::vector<std::string> codes;    ///< the same of kCode: the codes of findings
  std::vector<std::string> keys;     ///< "class=", of the kind kKeys, unless an option has its own
  /// Commands of the program that print completions of the kind kThing, a heading first, as a table
  /// of one column or as CSV.
  std::vector<std::string> listings;
};

/// Reads the definitions. Leaves out options that --help does not show, and all that is not in the
/// definitions: classes, codes, keys and listings.
Usage UsageOf(const CLI::App& app);

/// The names of all options, or of those that take a value.
std::vector<std::string> OptionNames(const UsageCommand& command, bool withValueOnly = false);

/// A shell command that lists the completions of the kind kThing, one a line.
std::string ListingText(const Usage& usage);

/// Returns the possible values of an option: its choices, the classes, the codes or the keys.
const std::vector<std::string>& ValuesOf(const Usage& usage, const UsageOption& option);

}  // namespace pciinfo
