// SPDX-License-Identifier: Apache-2.0
#include "host/formats/csv_writer.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/console/safe_json.h"
#include "host/console/text.h"
#include "host/console/utf8.h"
#include "host/formats/value_text.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::size_t kNoProperty = static_cast<std::size_t>(-1);

void WriteWithDoubledQuotes(Output& output, std::string_view text) {
  for (std::size_t end = text.find('"'); end != std::string_view::npos; end = text.find('"')) {
    output.Write(text.substr(0, end));
    output.Write("\"\"");
    text.remove_prefix(end + 1);
  }
  output.Write(text);
}

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

}  // namespace

void CsvWriter::Expect(const vtq::Class& cimClass) {
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
  output_.Write(kLineEnd);
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
  for (const std::size_t position : positions_) {
    output_.Write(",");
    if (position != kNoProperty) WriteValue(instance.GetValue(position));
  }
  output_.Write(kLineEnd);
}

void CsvWriter::WriteText(std::string_view bytes) {
  output_.Write("\"");
  WriteWithDoubledQuotes(output_, isShown_ ? Printable(bytes) : ToUtf8(bytes));
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
    WriteWithDoubledQuotes(output_, JsonElement(element));
  }
  output_.Write("]\"");
}

}  // namespace pciinfo
