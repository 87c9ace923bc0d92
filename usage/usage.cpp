// SPDX-License-Identifier: Apache-2.0
#include "usage/usage.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>

namespace pciinfo {
namespace {

/// Returns the elements of "FORMAT:{table,json}", the text that CLI11 shows for a value from a set,
/// or of "auto|never".
std::vector<std::string> ChoicesIn(const std::string& typeName) {
  if (typeName.find('|') != std::string::npos) return CLI::detail::split(typeName, '|');
  const std::size_t begin = typeName.find(":{");
  const std::size_t end = typeName.find('}', begin);
  if (begin == std::string::npos || end == std::string::npos) return {};
  return CLI::detail::split(typeName.substr(begin + 2, end - begin - 2), ',');
}

/// The word that --help shows for a value tells its kind.
ValueKind KindOf(const std::string& valueName) {
  constexpr const char* kFiles[] = {"FILE", "CAPTURE", "DIRECTORY"};
  const bool isFile = std::any_of(std::begin(kFiles), std::end(kFiles), [&](const char* word) {
    return valueName.find(word) != std::string::npos;
  });
  if (isFile) return ValueKind::kFile;
  if (valueName == "CODE") return ValueKind::kCode;
  if (valueName == "KEY=VALUE,...") return ValueKind::kKeys;
  if (valueName == "NAME") return ValueKind::kThing;
  return valueName == "CLASS" ? ValueKind::kClass : ValueKind::kOther;
}

std::vector<std::string> NamesOf(const CLI::Option& option) {
  if (option.get_positional()) return {option.get_name()};
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

UsageOption OptionOf(const CLI::Option& option) {
  UsageOption usage;
  usage.names = NamesOf(option);
  usage.description = option.get_description();
  usage.defaultText = option.get_default_str();
  usage.isRequired = option.get_required();
  usage.isRepeatable = option.get_items_expected_max() > 1 ||
                       option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
  if (option.get_items_expected_max() == 0) return usage;  // a flag
  const std::string typeName = option.get_type_name();
  usage.valueName = typeName.substr(0, typeName.find(':'));
  usage.choices = ChoicesIn(typeName);
  const bool isList = usage.valueName.ends_with(",...");
  usage.kind = isList ? ValueKind::kList : ValueKind::kChoice;
  if (usage.choices.empty()) usage.kind = KindOf(usage.valueName);
  if (usage.kind == ValueKind::kOther) usage.kind = KindOf(usage.names.front());
  return usage;
}

UsageCommand CommandOf(const CLI::App& app) {
  UsageCommand command{app.get_name(), app.get_description(), {}, {}, app.get_footer()};
  for (const CLI::Option* option : app.get_options()) {
    if (option->get_group().empty()) continue;
    (option->get_positional() ? command.arguments : command.options).push_back(OptionOf(*option));
  }
  return command;
}

const UsageOption* FindOption(const UsageCommand& command, const std::string& name) {
  for (const UsageOption& option : command.options) {
    if (option.names.back() == name) return &option;
  }
  return nullptr;
}

}  // namespace

Usage UsageOf(const CLI::App& app) {
  Usage usage{CommandOf(app), {}, {}, {}, {}, {}};
  const auto isShown = [](const CLI::App* command) { return !command->get_group().empty(); };
  for (const CLI::App* shown : app.get_subcommands(isShown)) {
    UsageCommand& command = usage.commands.emplace_back(CommandOf(*shown));
    std::erase_if(command.options, [&usage](const UsageOption& option) {
      const UsageOption* const same = FindOption(usage.program, option.names.back());
      return same != nullptr && same->choices == option.choices &&
             same->description == option.description;
    });
  }
  return usage;
}

std::vector<std::string> OptionNames(const UsageCommand& command, bool withValueOnly) {
  std::vector<std::string> names;
  for (const UsageOption& option : command.options) {
    if (withValueOnly && option.kind == ValueKind::kNothing) continue;
    names.insert(names.end(), option.names.begin(), option.names.end());
  }
  return names;
}

std::string ListingText(const Usage& usage) {
  std::string text;
  for (const std::string& listing : usage.listings) {
    text += fmt::format("{}{} {} 2>/dev/null | sed 1d", text.empty() ? "" : "; ",
                        usage.program.name, listing);
  }
  // Of CSV, neither the end of the line nor quotes.
  return text.empty() ? ":"
                      : "{ " + text + R"(; } | sed 's/\r$//; s/^"//; s/"$//; s/""/"/g' | sort -u)";
}

const std::vector<std::string>& ValuesOf(const Usage& usage, const UsageOption& option) {
  if (option.kind == ValueKind::kCode) return usage.codes;
  if (option.kind == ValueKind::kKeys) return option.keys.empty() ? usage.keys : option.keys;
  return option.kind == ValueKind::kClass ? usage.classes : option.choices;
}

}  // namespace pciinfo
