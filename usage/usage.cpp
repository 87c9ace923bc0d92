// SPDX-License-Identifier: Apache-2.0
#include "usage/usage.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <utility>

namespace pciinfo {
namespace {

/// Returns the elements of "FORMAT:{table,json}", the text that CLI11 shows for a value from a set.
std::vector<std::string> ChoicesIn(const std::string& typeName) {
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
  usage.kind = usage.choices.empty() ? KindOf(usage.valueName) : ValueKind::kChoice;
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

}  // namespace

Usage UsageOf(const CLI::App& app, std::vector<std::string> classes,
              std::vector<std::string> codes) {
  Usage usage{CommandOf(app), {}, std::move(classes), std::move(codes)};
  const auto isShown = [](const CLI::App* command) { return !command->get_group().empty(); };
  const std::vector<std::string> common = OptionNames(usage.program);
  for (const CLI::App* shown : app.get_subcommands(isShown)) {
    UsageCommand& command = usage.commands.emplace_back(CommandOf(*shown));
    std::erase_if(command.options, [&common](const UsageOption& option) {
      return std::find(common.begin(), common.end(), option.names.back()) != common.end();
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

const std::vector<std::string>& ValuesOf(const Usage& usage, const UsageOption& option) {
  if (option.kind == ValueKind::kCode) return usage.codes;
  return option.kind == ValueKind::kClass ? usage.classes : option.choices;
}

}  // namespace pciinfo
