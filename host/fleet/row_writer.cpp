// SPDX-License-Identifier: Apache-2.0
#include "host/fleet/row_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>

#include "host/console/safe_json.h"
#include "host/console/text.h"
#include "host/console/utf8.h"
#include "host/formats/csv_text.h"
#include "host/formats/json_text.h"
#include "host/formats/yaml_writer.h"

namespace pciinfo {
namespace {

using RowJson = nlohmann::ordered_json;

/// A number or a boolean as JSON has it: null for infinity and for what is no number.
std::string ScalarJson(const DbValue& value) {
  if (const auto* number = std::get_if<std::int64_t>(&value)) return std::to_string(*number);
  if (const auto* real = std::get_if<double>(&value)) return RowJson(*real).dump();
  if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "true" : "false";
  return "null";
}

void WriteDbValue(Output& output, const DbValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return WriteJsonString(output, *text);
  output.Write(ScalarJson(value));
}

/// A value as a table shows it; nothing for null.
std::string PlainText(const DbValue& value) {
  if (std::holds_alternative<std::monostate>(value)) return "";
  const auto* text = std::get_if<std::string>(&value);
  return text == nullptr ? ScalarJson(value) : *text;
}

/// In a format with names each needs to be there once.
void RequireDistinct(const std::vector<std::string>& names) {
  std::set<std::string> seen;
  for (const std::string& name : names) {
    if (seen.insert(name).second) continue;
    throw std::runtime_error(fmt::format(
        "two columns have the name \"{}\": give one another name with AS, or use csv", name));
  }
}

class RowJsonWriter final : public RowSink {
 public:
  /// `key`: the name of the list; empty for JSON Lines, which have none.
  RowJsonWriter(std::string key, Output& output) : key_(std::move(key)), output_(output) {}

  void Begin(const std::vector<std::string>& names) override {
    RequireDistinct(names);
    beginnings_.reserve(names.size());
    for (const std::string& name : names) {
      const std::string text = SafeJson(RowJson(ToUtf8(name)).dump());
      beginnings_.push_back((beginnings_.empty() ? "{" : ",") + text + ":");
    }
    if (!key_.empty()) output_.Write(fmt::format("{{\"{}\":[", key_));
  }
  void Write(const DbRow& row) override {
    if (!key_.empty()) output_.Write(isFirst_ ? "\n" : ",\n");
    isFirst_ = false;
    for (std::size_t i = 0; i < beginnings_.size(); ++i) {
      output_.Write(beginnings_[i]);
      WriteDbValue(output_, row[i]);
    }
    output_.Write(key_.empty() ? "}\n" : "}");
  }
  void End() override {
    if (!key_.empty()) output_.Write(isFirst_ ? "]}\n" : "\n]}\n");
  }

 private:
  std::string key_;
  Output& output_;
  std::vector<std::string> beginnings_;  ///< of the values: `{"first":`, `,"second":`, ...
  bool isFirst_ = true;
};

/// Each row is written as a list of one item; consecutive items read as one list.
class RowYamlWriter final : public RowSink {
 public:
  RowYamlWriter(std::string key, Output& output) : key_(std::move(key)), output_(output) {}

  void Begin(const std::vector<std::string>& names) override {
    RequireDistinct(names);
    names_ = names;
    output_.Write(key_ + ":");
  }
  void Write(const DbRow& row) override {
    if (isFirst_) output_.Write("\n");
    isFirst_ = false;
    RowJson object = RowJson::object();
    for (std::size_t i = 0; i < names_.size(); ++i) {
      const auto* text = std::get_if<std::string>(&row[i]);
      object[ToUtf8(names_[i])] =
          text == nullptr ? RowJson::parse(ScalarJson(row[i])) : RowJson(ToUtf8(*text));
    }
    WriteYaml(output_, RowJson::array({object}));
  }
  void End() override {
    if (isFirst_) output_.Write(" []\n");
  }

 private:
  std::string key_;
  Output& output_;
  std::vector<std::string> names_;
  bool isFirst_ = true;
};

class RowCsvWriter final : public RowSink {
 public:
  RowCsvWriter(const RowFormat& form, Output& output)
      : isShown_(form.terminal.width.has_value()), output_(output) {}

  void Begin(const std::vector<std::string>& names) override {
    DbRow head;
    head.reserve(names.size());
    for (const std::string& name : names) head.emplace_back(name);
    Write(head);
  }
  void Write(const DbRow& row) override {
    const char* separator = "";
    for (const DbValue& value : row) {
      output_.Write(separator);
      separator = ",";
      WriteField(value);
    }
    output_.Write(kCsvLineEnd);
  }
  void End() override {}

 private:
  void WriteField(const DbValue& value) {
    const auto* text = std::get_if<std::string>(&value);
    if (text == nullptr) return output_.Write(PlainText(value));
    output_.Write("\"");
    WriteInQuotes(output_, isShown_ ? Printable(*text) : ToUtf8(*text));
    output_.Write("\"");
  }

  bool isShown_;
  Output& output_;
};

class RowTableWriter final : public RowSink {
 public:
  RowTableWriter(const RowFormat& form, Output& output)
      : shown_(form.columns), terminal_(form.terminal), output_(output) {}

  void Begin(const std::vector<std::string>& names) override {
    for (const ShownColumn& shown : shown_.empty() ? AllOf(names) : shown_) {
      const auto place = std::find(names.begin(), names.end(), shown.name);
      places_.push_back(static_cast<std::size_t>(place - names.begin()));
      headings_.push_back(shown.column);
    }
  }
  void Write(const DbRow& row) override {
    Row& cells = rows_.emplace_back();
    cells.reserve(places_.size());
    for (const std::size_t place : places_) cells.push_back(Printable(PlainText(row.at(place))));
  }
  void End() override {
    if (rows_.empty()) return;  // a message says why, see WhyEmpty
    WriteLines(output_, FormatTable(headings_, rows_, terminal_));
  }

 private:
  static std::vector<ShownColumn> AllOf(const std::vector<std::string>& names) {
    std::vector<ShownColumn> all;
    all.reserve(names.size());
    for (const std::string& name : names) {
      all.push_back({name, {.heading = Printable(name), .shrinks = true}});
    }
    return all;
  }

  std::vector<ShownColumn> shown_;
  Terminal terminal_;
  Output& output_;
  std::vector<std::size_t> places_;
  std::vector<Column> headings_;
  std::vector<Row> rows_;
};

}  // namespace

std::unique_ptr<RowSink> MakeRowWriter(const RowFormat& form, Output& output) {
  if (form.format == "json") return std::make_unique<RowJsonWriter>(form.key, output);
  if (form.format == "jsonl") return std::make_unique<RowJsonWriter>("", output);
  if (form.format == "yaml") return std::make_unique<RowYamlWriter>(form.key, output);
  if (form.format == "csv") return std::make_unique<RowCsvWriter>(form, output);
  return std::make_unique<RowTableWriter>(form, output);
}

}  // namespace pciinfo
