#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace pciinfo {

/// What stands where a value is asked for, as far as a shell can help with it.
enum class ValueKind { kNothing, kChoice, kFile, kClass, kOther };

/// An option, or an argument that is told by its place.
struct UsageOption {
  std::vector<std::string> names;  ///< "-h", "--help"; of an argument: its one name, "FILE"
  std::string valueName;           ///< empty for a flag
  std::string description;
  std::string defaultText;           ///< empty when there is none
  std::vector<std::string> choices;  ///< empty when anything goes
  ValueKind kind = ValueKind::kNothing;
  bool isRequired = false;
  bool isRepeatable = false;
};

/// The program, or one of its commands. Options of the program may stand behind every command, so
/// a command has those only that the program has not.
struct UsageCommand {
  std::string name;
  std::string description;
  std::vector<UsageOption> options;
  std::vector<UsageOption> arguments;
  std::string footer;
};

/// What can be typed, as the definitions of the options have it.
struct Usage {
  UsageCommand program;
  std::vector<UsageCommand> commands;
  std::vector<std::string> classes;  ///< what stands where a class is asked for
};

/// Reads the definitions. What --help does not show is left out.
Usage UsageOf(const CLI::App& app, std::vector<std::string> classes);

/// The names of all options, or of those that take a value.
std::vector<std::string> OptionNames(const UsageCommand& command, bool withValueOnly = false);

/// What may stand in a value's place: its choices or the classes.
const std::vector<std::string>& ValuesOf(const Usage& usage, const UsageOption& option);

}  // namespace pciinfo
