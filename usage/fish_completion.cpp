// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "usage/writers.h"

namespace pciinfo {
namespace {

std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + "'";
}

/// Returns the possible values, as options of `complete`.
std::string ValueText(const Usage& usage, const UsageOption& option) {
  if (option.kind == ValueKind::kNothing) return "";
  if (option.kind == ValueKind::kFile) return " -r -F";
  const std::vector<std::string>& values = ValuesOf(usage, option);
  if (option.kind == ValueKind::kList || option.kind == ValueKind::kKeys) {
    return fmt::format(" -x -a '(__fish_append , {})'", fmt::join(values, " "));
  }
  return values.empty() ? " -x" : fmt::format(" -x -a '{}'", fmt::join(values, " "));
}

std::string NameText(const UsageOption& option) {
  std::string text;
  for (const std::string& name : option.names) {
    text += name.rfind("--", 0) == 0 ? " -l " + name.substr(2) : " -s " + name.substr(1);
  }
  return text;
}

class Writer {
 public:
  explicit Writer(const Usage& usage)
      : usage_(usage), start_("complete -c " + usage.program.name) {}

  std::string Write() {
    text_ = fmt::format("# fish completion for {}\n{} -f\n", usage_.program.name, start_);
    WriteCommandNames();
    for (const UsageOption& option : usage_.program.options) {
      WriteOption(ConditionOf(option), option);
    }
    for (const UsageCommand& command : usage_.commands) WriteCommand(command);
    return text_;
  }

 private:
  void WriteCommandNames() {
    std::string names;
    for (const UsageCommand& command : usage_.commands) names += " " + command.name;
    for (const UsageCommand& command : usage_.commands) {
      text_ += fmt::format("{} -n 'not __fish_seen_subcommand_from{}' -a {} -d {}\n", start_, names,
                           command.name, Quoted(command.description));
    }
  }

  /// An option of the program is not proposed for commands that have other choices for it.
  std::string ConditionOf(const UsageOption& option) const {
    std::string others;
    for (const UsageCommand& command : usage_.commands) {
      const std::vector<std::string> names = OptionNames(command);
      const bool isOwn = std::find(names.begin(), names.end(), option.names.back()) != names.end();
      if (isOwn) others += " " + command.name;
    }
    return others.empty() ? "" : fmt::format(" -n 'not __fish_seen_subcommand_from{}'", others);
  }

  void WriteCommand(const UsageCommand& command) {
    const std::string condition = fmt::format(" -n '__fish_seen_subcommand_from {}'", command.name);
    for (const UsageOption& option : command.options) WriteOption(condition, option);
    for (const UsageOption& argument : command.arguments) WriteArgument(condition, argument);
  }

  void WriteArgument(const std::string& condition, const UsageOption& argument) {
    const std::vector<std::string>& values = ValuesOf(usage_, argument);
    if (argument.kind == ValueKind::kThing) {
      text_ += fmt::format("{}{} -a {}\n", start_, condition,
                           Quoted("(sh -c " + Quoted(ListingText(usage_)) + ")"));
    }
    if (argument.kind == ValueKind::kFile) text_ += start_ + condition + " -F\n";
    if (!values.empty()) {
      text_ += fmt::format("{}{} -a '{}'\n", start_, condition, fmt::join(values, " "));
    }
  }

  void WriteOption(const std::string& condition, const UsageOption& option) {
    text_ += start_ + condition + NameText(option) + ValueText(usage_, option) + " -d " +
             Quoted(option.description) + "\n";
  }

  const Usage& usage_;
  std::string start_;
  std::string text_;
};

}  // namespace

std::string FishCompletion(const Usage& usage) { return Writer(usage).Write(); }

}  // namespace pciinfo
