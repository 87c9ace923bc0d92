// SPDX-License-Identifier: Apache-2.0
#include "host/check/finding_view.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "host/console/safe_json.h"
#include "host/console/text.h"
#include "host/console/utf8.h"

namespace pciinfo {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMaxShown = 8;

void WriteObjects(Output& output, const std::vector<AffectedObject>& objects) {
  const std::size_t shown = objects.size() > kMaxShown + 1 ? kMaxShown : objects.size();
  for (std::size_t i = 0; i < shown; ++i) {
    const AffectedObject& object = objects[i];
    output.Write("    " + Printable(object.object));
    for (const std::string& text : {object.name, object.detail}) {
      if (!text.empty()) output.Write("  " + Printable(text));
    }
    output.Write("\n");
  }
  if (shown == objects.size()) return;
  output.Write(fmt::format("    and {} more (--format json shows all)\n", objects.size() - shown));
}

Json ObjectJson(const AffectedObject& affected) {
  Json object;
  const auto add = [&object](const char* key, const std::string& text) {
    if (!text.empty()) object[key] = ToUtf8(text);
  };
  // Programs read addresses with their domain.
  object["object"] = ToUtf8(affected.address.empty() ? affected.object : affected.address);
  add("kind", affected.kind);
  add("path", affected.path);
  add("name", affected.name);
  add("detail", affected.detail);
  return object;
}

Json FindingJson(const CheckFinding& finding) {
  Json object;
  object["code"] = finding.code;
  object["severity"] = SeverityText(finding.severity);
  object["what"] = finding.what;
  object["advice"] = finding.advice;
  object["objects"] = Json::array();
  for (const AffectedObject& affected : finding.objects) {
    object["objects"].push_back(ObjectJson(affected));
  }
  return object;
}

}  // namespace

Json FindingsJson(const std::vector<CheckFinding>& findings) {
  auto array = Json::array();
  for (const CheckFinding& finding : findings) array.push_back(FindingJson(finding));
  return array;
}

void WriteFindings(Output& output, const std::vector<CheckFinding>& findings) {
  if (findings.empty()) output.Write("No findings.\n");
  bool isFirst = true;
  for (const CheckFinding& finding : findings) {
    if (!isFirst) output.Write("\n");
    isFirst = false;
    output.Write(fmt::format("{}: {}\n", SeverityText(finding.severity), finding.code));
    output.Write(fmt::format("  {}\n", finding.what));
    WriteObjects(output, finding.objects);
    output.Write(fmt::format("  Advice: {}\n", finding.advice));
  }
}

void WriteFindingsJson(Output& output, const std::vector<CheckFinding>& findings) {
  output.Write("{\"findings\":[");
  bool isFirst = true;
  for (const CheckFinding& finding : findings) {
    output.Write(isFirst ? "\n" : ",\n");
    isFirst = false;
    output.Write(SafeJson(FindingJson(finding).dump()));
  }
  output.Write(isFirst ? "]}\n" : "\n]}\n");
}

}  // namespace pciinfo
