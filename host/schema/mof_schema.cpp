// SPDX-License-Identifier: Apache-2.0
#include "host/schema/mof_schema.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <functional>
#include <string>

#include "host/formats/mof_text.h"

namespace pciinfo {
namespace {

constexpr std::size_t kLineWidth = 100;

/// Joins `items` with commas and breaks long lines.
std::string Folded(const std::vector<std::string>& items) {
  const std::string indent(8, ' ');
  std::string text;
  std::string line = indent;
  for (const std::string& item : items) {
    if (line.size() > indent.size() && line.size() + item.size() + 2 > kLineWidth) {
      text += line + '\n';
      line = indent;
    }
    if (line.size() > indent.size()) line += ' ';
    line += item;
    if (&item != &items.back()) line += ',';
  }
  return text + line;
}

std::string ListQualifier(const char* name, const std::vector<vtq::NamedValue>& values,
                          const std::function<std::string(const vtq::NamedValue&)>& textOf) {
  std::vector<std::string> items;
  items.reserve(values.size());
  for (const vtq::NamedValue& value : values) items.push_back(MofString(textOf(value)));
  return fmt::format("{} {{\n{} }}", name, Folded(items));
}

std::vector<std::string> QualifiersOf(const vtq::PropertySchema& property) {
  std::vector<std::string> qualifiers;
  if (property.isKey) qualifiers.emplace_back("Key");
  if (!property.overrides.empty()) {
    qualifiers.push_back("Override ( " + MofString(property.overrides) + " )");
  }
  qualifiers.push_back("Description ( " + MofString(property.description) + " )");
  if (!property.values.empty()) {
    qualifiers.push_back(ListQualifier("ValueMap", property.values, [](const auto& value) {
      return std::to_string(value.value);
    }));
    qualifiers.push_back(
        ListQualifier("Values", property.values, [](const auto& value) { return value.meaning; }));
  }
  return qualifiers;
}

std::string TypeOf(const vtq::PropertySchema& property) {
  if (property.targets.empty()) return property.type.GetName();
  return (property.targets.size() == 1 ? property.targets.front() : property.commonTarget) + " REF";
}

std::string Declaration(const vtq::PropertySchema& property) {
  return fmt::format("    [{}]\n  {} {}{};\n", fmt::join(QualifiersOf(property), ",\n     "),
                     TypeOf(property), property.name, property.isArray ? "[]" : "");
}

std::string HeadOf(const vtq::ClassSchema& schema) {
  const bool joins = !vtq::JoinedClasses(schema).empty();
  return fmt::format("[{}Description ( {} )]\nclass {}{} {{\n", joins ? "Association, " : "",
                     MofString(schema.description), schema.name,
                     schema.superclass.empty() ? "" : " : " + schema.superclass);
}

}  // namespace

void WriteMofSchema(Output& output, const std::vector<vtq::ClassSchema>& classes) {
  output.Write("// The classes of pciinfo " PCIINFO_VERSION
               ", for a namespace that holds the DMTF CIM schema.\n");
  for (const vtq::ClassSchema& schema : classes) {
    output.Write("\n" + HeadOf(schema));
    bool first = true;
    for (const vtq::PropertySchema& property : schema.properties) {
      if (!first) output.Write("\n");
      first = false;
      output.Write(Declaration(property));
    }
    output.Write("};\n");
  }
}

}  // namespace pciinfo
