// SPDX-License-Identifier: Apache-2.0
#include "host/fleet/conditions.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace pciinfo {
namespace {

/// A pattern of LIKE with the escape character "!" for a text in which `any` stands for any
/// characters.
std::string PatternOf(const std::string& text, char any) {
  std::string pattern;
  for (const char c : text) {
    if (c == any) {
      pattern += '%';
      continue;
    }
    if (c == '%' || c == '_' || c == '!') pattern += '!';
    pattern += c;
  }
  return pattern;
}

/// The condition that a column is like a pattern. Engines differ in whether LIKE knows case.
std::string IsLike(const std::string& column, std::string pattern, Conditions& conditions) {
  return fmt::format("LOWER({}) LIKE LOWER(CAST({} AS TEXT)) ESCAPE '!'", column,
                     conditions.Bind(std::move(pattern)));
}

}  // namespace

std::string Conditions::Bind(std::string value) {
  values_.push_back(std::move(value));
  return fmt::format("${}", values_.size());
}

FleetStatement Conditions::Make(const std::string& select, const std::string& end) const {
  const std::string where = conditions_.empty() ? "" : " WHERE ";
  return {fmt::format("{}{}{} {}", select, where, fmt::join(conditions_, " AND "), end), values_};
}

std::string IsText(const std::string& column, const std::string& text, Conditions& conditions) {
  if (text.find('*') != std::string::npos) {
    return IsLike(column, PatternOf(text, '*'), conditions);
  }
  return fmt::format("{} = {}", column, conditions.Bind(text));
}

std::string ContainsText(const std::string& column, const std::string& text,
                         Conditions& conditions) {
  return IsLike(column, "%" + PatternOf(text, '\0') + "%", conditions);
}

}  // namespace pciinfo
