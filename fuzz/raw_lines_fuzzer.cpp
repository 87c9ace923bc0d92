// SPDX-License-Identifier: Apache-2.0

// The raw listings, line by line.
#include "fuzz/fuzz.h"
#include "pci/dev_info.h"
#include "pci/lines.h"
#include "tests/fakes/framework.h"

namespace {

using fuzz::Require;
using NQZMVTQ20::TCIMValue;

constexpr const char* kCommand = "lspci -vvv";

// Splits off lines as long as there is a line end.
std::vector<std::string> PlainLines(std::string text) {
  std::vector<std::string> lines;
  for (std::size_t end; (end = text.find('\n')) != std::string::npos; text.erase(0, end + 1)) {
    lines.push_back(text.substr(0, end));
  }
  return lines;
}

void CheckElements(const TCIMValue::TArray& values, const std::vector<std::string>& lines) {
  Require(values.size() == lines.size(), "there is an element for each line end");
  for (std::size_t i = 0; i < lines.size(); ++i) {
    Require(values[i].GetString() == lines[i], "an element is its line");
  }
}

void CheckCollected(const TPropertyMap& properties, const std::vector<std::string>& lines) {
  Require(properties.at("Command").GetString() == kCommand, "the command is kept");
  Require(properties.count("RawResult") == (lines.empty() ? 0 : 1), "no line gives no result");
  if (lines.empty()) return;
  const TCIMValue& result = properties.at("RawResult");
  Require(result.GetType().GetCode() == TCIMValue::TCIMType::kString, "lines are strings");
  CheckElements(result.GetArray(), lines);
}

}  // namespace

void fuzz::CheckInput(std::string_view input) {
  static TPciDevInfo collector(nullptr);
  const std::vector<std::string> lines = PlainLines(std::string(input));
  CheckElements(SplitLines(input), lines);
  Fake() = {};
  Fake().commands[kCommand] = [input] { return std::string(input); };
  std::vector<TPropertyMap> maps;
  collector.GetPciRawData(&maps, kCommand);
  Require(maps.size() == 1, "a command gives one map");
  CheckCollected(maps[0], lines);
  Fake() = {};  // what stays allocated looks like a leak of this input
}
