// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <string_view>

#include "usage/writers.h"

namespace pciinfo {
namespace {

/// Escapes `text` for single quotes, and puts a backslash before each character of `special`.
std::string Escaped(const std::string& text, std::string_view special) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\'') {
      escaped += "'\\''";
      continue;
    }
    if (special.find(c) != std::string_view::npos) escaped += '\\';
    escaped += c;
  }
  return escaped;
}

/// Returns the completion of a value: ":NAME:ACTION".
std::string ValueAction(const Usage& usage, const UsageOption& option) {
  const std::string name = Escaped(option.valueName, "\\:");
  if (option.kind == ValueKind::kFile) return fmt::format(":{}:_files", name);
  if (option.kind == ValueKind::kThing) {
    return fmt::format(":{}: _{}_things", name, usage.program.name);
  }
  const std::vector<std::string>& values = ValuesOf(usage, option);
  if (option.kind == ValueKind::kList || option.kind == ValueKind::kKeys) {
    return fmt::format(":{}: _{}_list {}", name, usage.program.name, fmt::join(values, " "));
  }
  return values.empty() ? fmt::format(":{}: ", name)
                        : fmt::format(":{}:({})", name, fmt::join(values, " "));
}

std::string OptionLines(const Usage& usage, const UsageCommand& command, int indent) {
  std::string lines;
  for (const UsageOption& option : command.options) {
    const bool isFlag = option.kind == ValueKind::kNothing;
    for (const std::string& name : option.names) {
      const bool takesEqualSign = !isFlag && name.rfind("--", 0) == 0;
      lines += fmt::format("{:{}}'{}{}{}[{}]{}'\n", "", indent, option.isRepeatable ? "*" : "",
                           name, takesEqualSign ? "=" : "", Escaped(option.description, "\\[]:"),
                           isFlag ? "" : ValueAction(usage, option));
    }
  }
  return lines;
}

std::string ArgumentLines(const Usage& usage, const UsageCommand& command) {
  std::string lines;
  for (const UsageOption& argument : command.arguments) {
    UsageOption named = argument;
    named.valueName = argument.names.front();
    lines += fmt::format("            '{}{}'\n", argument.isRepeatable ? "*" : "",
                         ValueAction(usage, named));
  }
  return lines;
}

std::string CommandCase(const Usage& usage, const UsageCommand& command) {
  return fmt::format("        {})\n          own_arguments=(\n{}{}          )\n          ;;\n",
                     command.name, OptionLines(usage, command, 12), ArgumentLines(usage, command));
}

}  // namespace

// The variables have long names because zsh has its own variables "commands" and "options". Options
// behind a command are its own first ("-A" leaves them to the case), as zsh takes the first of two.
std::string ZshCompletion(const Usage& usage) {
  std::string commands;
  std::string cases;
  for (const UsageCommand& command : usage.commands) {
    commands += fmt::format("    '{}:{}'\n", command.name, Escaped(command.description, "\\:"));
    cases += CommandCase(usage, command);
  }
  return fmt::format(R"zsh(#compdef {0}

# Of a list with commas, the last word.
_{0}_list() {{
  compset -P '*,'
  compadd -S '' -- "$@"
}}

# What this machine has.
_{0}_things() {{
  local -a things
  things=(${{(f)"$({4})"}})
  compadd -a things
}}

_{0}() {{
  local curcontext=$curcontext state state_descr line
  typeset -A opt_args
  local -a program_commands program_options own_arguments
  program_commands=(
{1}  )
  program_options=(
{2}  )
  _arguments -C -A '-*' $program_options '1:command:->command' '*::argument:->argument'
  case $state in
    command)
      _describe command program_commands
      ;;
    argument)
      case $words[1] in
{3}      esac
      _arguments $own_arguments $program_options
      ;;
  esac
}}

_{0} "$@"
)zsh",
                     usage.program.name, commands, OptionLines(usage, usage.program, 4), cases,
                     ListingText(usage));
}

}  // namespace pciinfo
