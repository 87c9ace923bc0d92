// SPDX-License-Identifier: Apache-2.0
#include "host/formats/table_writer.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/console/text.h"
#include "host/formats/value_text.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;

constexpr std::string_view kIndent = "  ";
constexpr std::string_view kEquals = " = ";

std::size_t LongestName(const vtq::Class& cimClass) {
  std::size_t longest = 0;
  for (const vtq::PropertySchema& property : cimClass.GetSchema().properties) {
    longest = std::max(longest, property.name.size());
  }
  return longest;
}

}  // namespace

void TableWriter::BeginClass(const vtq::Class& cimClass) {
  const std::size_t count = cimClass.GetInstances().size();
  output_.Write(fmt::format("{}{}: {} {}\n", first_ ? "" : "\n", cimClass.GetSchema().name, count,
                            count == 1 ? "instance" : "instances"));
  first_ = false;
}

void TableWriter::Write(const vtq::Class& cimClass, const vtq::Instance& instance) {
  output_.Write("\n");
  const vtq::InstanceValues values(instance);
  const std::size_t nameWidth = LongestName(cimClass);
  for (const std::size_t position : cimClass.GetNameOrder()) {
    const TCIMValue& value = values[position];
    if (value.IsNull()) continue;
    output_.Write(kIndent);
    output_.Write(PadRight(cimClass.GetSchema().properties[position].name, nameWidth));
    output_.Write(kEquals);
    WriteValue(value, kIndent.size() + nameWidth + kEquals.size());
    output_.Write("\n");
  }
}

void TableWriter::WriteValue(const TCIMValue& value, std::size_t indent) {
  if (!value.IsArray()) return output_.Write(Printable(ScalarText(value)));
  const std::string separator = IsText(value.GetType()) ? "\n" + std::string(indent, ' ') : ", ";
  bool first = true;
  for (const TCIMValue& element : value.GetArray()) {
    if (!first) output_.Write(separator);
    first = false;
    output_.Write(Printable(ScalarText(element)));
  }
}

}  // namespace pciinfo
