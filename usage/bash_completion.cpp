// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>
#include <fmt/ranges.h>

#include "usage/writers.h"

namespace pciinfo {
namespace {

// Bash splits "--format=json" into three words.
constexpr const char* kBegin = R"(# bash completion for {0}

_{0}_words() {{
  mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2")
}}

_{0}_files() {{
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -f -- "$1")
}}

# Of a list with commas, the last word.
_{0}_list() {{
  local begun=${{2%"${{2##*,}}"}}
  compopt -o nospace 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -P "$begun" -W "$1" -- "${{2##*,}}")
}}

# What this machine has. Bash splits an address at its colons, and completes the part behind the last;
# a name with blanks is quoted, unless that has begun.
_{0}_things() {{
  local word=$1 begun= quote= thing i=$COMP_CWORD
  while ((i > 1)) && [[ ${{COMP_WORDS[i]}} == : || ${{COMP_WORDS[i - 1]}} == : ]]; do
    word=${{COMP_WORDS[--i]}}$word
  done
  if [[ $word == [\"\']* ]]; then
    quote=${{word:0:1}} word=${{word:1}}
  else
    word=${{word//\\/}} begun=${{word%"${{word##*:}}"}}
  fi
  while IFS= read -r thing; do
    [[ $thing == "$word"* ]] || continue
    thing=${{thing#"$begun"}}
    [[ $quote ]] || printf -v thing %q "$thing"
    COMPREPLY+=("$thing")
  done < <({1})
}}

_{0}() {{
  local cur=${{COMP_WORDS[COMP_CWORD]}} prev=${{COMP_WORDS[COMP_CWORD - 1]}} command= place=0 i
  COMPREPLY=()
  if [[ $cur == = ]]; then
    cur=
  else
    for ((i = COMP_CWORD; i > 2; i -= 2)); do
      [[ ${{COMP_WORDS[i - 1]}} == = ]] || break
      prev=${{COMP_WORDS[i - 2]}}
      [[ $prev == -* ]] || prev=${{COMP_WORDS[i - 3]}}
    done
  fi
  for ((i = 1; i < COMP_CWORD; i++)); do
    case ${{COMP_WORDS[i]}} in
      {2})
        ((i++))
        [[ ${{COMP_WORDS[i]}} == = ]] && ((i++))
        while [[ ${{COMP_WORDS[i + 1]}} == = ]]; do ((i += 2)); done
        ;;
      -*) ;;
      *)
        if [[ -z $command ]]; then
          command=${{COMP_WORDS[i]}}
        elif [[ ${{COMP_WORDS[i]}} != : && ${{COMP_WORDS[i - 1]}} != : ]]; then
          ((place++))
        fi
        ;;
    esac
  done
)";

constexpr const char* kEnd = R"(}}
complete -F _{0} {0}
)";

std::string Words(const std::vector<std::string>& words) {
  return fmt::format("{}", fmt::join(words, " "));
}

/// The line that completes a value.
std::string Completing(const Usage& usage, const UsageOption& option) {
  const std::string& program = usage.program.name;
  if (option.kind == ValueKind::kFile) return fmt::format("_{}_files \"$cur\"", program);
  if (option.kind == ValueKind::kThing) return fmt::format("_{}_things \"$cur\"", program);
  const std::vector<std::string>& values = ValuesOf(usage, option);
  if (option.kind == ValueKind::kList || option.kind == ValueKind::kKeys) {
    return fmt::format("_{}_list \"{}\" \"$cur\"", program, Words(values));
  }
  return values.empty() ? ":" : fmt::format("_{}_words \"{}\" \"$cur\"", program, Words(values));
}

std::string ValueCases(const Usage& usage, const UsageCommand& command, const std::string& name) {
  std::string cases;
  for (const UsageOption& option : command.options) {
    if (option.kind == ValueKind::kNothing) continue;
    const std::string prefix = name + ":";
    cases += fmt::format("    {}{}) {}; return ;;\n", prefix, fmt::join(option.names, "|" + prefix),
                         Completing(usage, option));
  }
  return cases;
}

std::string OptionCase(const Usage& usage, const UsageCommand& command, const std::string& name) {
  std::vector<std::string> names = OptionNames(usage.program);
  if (&command != &usage.program) {
    for (const std::string& own : OptionNames(command)) names.push_back(own);
  }
  return fmt::format("      {}) _{}_words \"{}\" \"$cur\" ;;\n", name, usage.program.name,
                     Words(names));
}

/// What completes the arguments of a command; the last one is repeated.
std::string ArgumentCases(const Usage& usage, const UsageCommand& command) {
  std::string cases;
  for (std::size_t i = 0; i < command.arguments.size(); ++i) {
    const bool isLast = i + 1 == command.arguments.size();
    cases += fmt::format("    {}:{}) {} ;;\n", command.name, isLast ? "*" : std::to_string(i),
                         Completing(usage, command.arguments[i]));
  }
  return cases;
}

std::vector<std::string> CommandNames(const Usage& usage) {
  std::vector<std::string> names;
  for (const UsageCommand& command : usage.commands) names.push_back(command.name);
  return names;
}

}  // namespace

std::string BashCompletion(const Usage& usage) {
  const std::string& program = usage.program.name;
  std::vector<std::string> valued = OptionNames(usage.program, true);
  std::string values;
  std::string options = OptionCase(usage, usage.program, "''");
  std::string arguments =
      fmt::format("    :*) _{}_words \"{}\" \"$cur\" ;;\n", program, Words(CommandNames(usage)));
  for (const UsageCommand& command : usage.commands) {
    for (const std::string& name : OptionNames(command, true)) valued.push_back(name);
    values += ValueCases(usage, command, command.name);
    options += OptionCase(usage, command, command.name);
    arguments += ArgumentCases(usage, command);
  }
  values += ValueCases(usage, usage.program, "*");  // a command's own choices go first
  return fmt::format(kBegin, program, ListingText(usage), fmt::join(valued, " | ")) +
         "  case $command:$prev in\n" + values + "  esac\n" +
         "  if [[ $cur == -* ]]; then\n    case $command in\n" + options +
         "    esac\n    return\n  fi\n" + "  case $command:$place in\n" + arguments + "  esac\n" +
         fmt::format(kEnd, program);
}

}  // namespace pciinfo
