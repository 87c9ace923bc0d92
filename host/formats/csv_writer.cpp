// SPDX-License-Identifier: Apache-2.0
#include "host/formats/csv_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "host/console/safe_json.h"
#include "host/console/text.h"
#include "host/console/utf8.h"
#include "host/formats/csv_text.h"
#include "host/formats/value_text.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;

constexpr std::size_t kNoProperty = static_cast<std::size_t>(-1);

std::string JsonElement(const TCIMValue& element) {
  using enum TCIMValue::TCIMType::ECIMType;
  if (element.IsNull()) return "null";
  if (IsText(element.GetType())) {
    return SafeJson(nlohmann::json(ToUtf8(static_cast<std::string>(element))).dump());
  }
  const auto code = element.GetType().GetCode();
  const bool isReal = code == kReal32 || code == kReal64;
  return isReal ? nlohmann::json(static_cast<double>(element)).dump() : ScalarText(element);
}

std::size_t LengthOf(const TCIMValue& value) {
  if (!value.IsArray()) return ScalarText(value).size();
  std::size_t length = 0;
  for (const TCIMValue& element : value.GetArray()) length += LengthOf(element) + 1;
  return length;
}

/// Throws std::runtime_error for a value that readers refuse or cut.
void RequireShortFields(const vtq::Class& cimClass) {
  constexpr std::size_t kMost = 32767;  // a spreadsheet's cell; some libraries take 131,072
  const vtq::ClassSchema& schema = cimClass.GetSchema();
  for (const auto& instance : cimClass.GetInstances()) {
    const vtq::InstanceValues values(*instance);
    for (std::size_t place = 0; place < schema.properties.size(); ++place) {
      if (LengthOf(values[place]) <= kMost) continue;
      throw std::runtime_error(fmt::format(
          "{} does not fit into CSV: its {} has more characters than a spreadsheet's cell can hold "
          "({}); use --format jsonl, or name the classes that are to be printed",
          schema.name, schema.properties[place].name, kMost));
    }
  }
}

}  // namespace

void CsvWriter::Expect(const vtq::Class& cimClass) {
  RequireShortFields(cimClass);
  for (const vtq::PropertySchema& property : cimClass.GetSchema().properties) {
    const auto place = std::lower_bound(columns_.begin(), columns_.end(), property.name);
    if (place == columns_.end() || *place != property.name) columns_.insert(place, property.name);
  }
}

void CsvWriter::Begin() {
  output_.Write("class,path");
  for (const std::string& column : columns_) {
    output_.Write(",");
    output_.Write(column);
  }
  output_.Write(kCsvLineEnd);
}

void CsvWriter::BeginClass(const vtq::Class& cimClass) {
  positions_.assign(columns_.size(), kNoProperty);
  const std::vector<vtq::PropertySchema>& properties = cimClass.GetSchema().properties;
  for (std::size_t position = 0; position < properties.size(); ++position) {
    const auto column =
        std::lower_bound(columns_.begin(), columns_.end(), properties[position].name);
    positions_[static_cast<std::size_t>(column - columns_.begin())] = position;
  }
}

void CsvWriter::Write(const vtq::Class& cimClass, const vtq::Instance& instance) {
  WriteText(cimClass.GetSchema().name);
  output_.Write(",");
  WriteText(instance.GetObjectReference({}).ToString());
  const vtq::InstanceValues values(instance);
  for (const std::size_t position : positions_) {
    output_.Write(",");
    if (position != kNoProperty) WriteValue(values[position]);
  }
  output_.Write(kCsvLineEnd);
}

void CsvWriter::WriteText(std::string_view bytes) {
  output_.Write("\"");
  WriteInQuotes(output_, isShown_ ? Printable(bytes) : ToUtf8(bytes));
  output_.Write("\"");
}

void CsvWriter::WriteValue(const TCIMValue& value) {
  if (value.IsNull()) return;
  if (value.IsArray()) return WriteArray(value.GetArray());
  if (IsText(value.GetType())) return WriteText(static_cast<std::string>(value));
  output_.Write(ScalarText(value));
}

void CsvWriter::WriteArray(const TCIMValue::TArray& elements) {
  output_.Write("\"[");
  bool first = true;
  for (const TCIMValue& element : elements) {
    if (!first) output_.Write(",");
    first = false;
    WriteInQuotes(output_, JsonElement(element));
  }
  output_.Write("]\"");
}

}  // namespace pciinfo
