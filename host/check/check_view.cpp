// SPDX-License-Identifier: Apache-2.0
#include "host/check/check_view.h"

#include <fmt/format.h>

#include <algorithm>
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
    if (!object.detail.empty()) output.Write("  " + Printable(object.detail));
    output.Write("\n");
  }
  if (shown == objects.size()) return;
  output.Write(fmt::format("    and {} more (--format json shows all)\n", objects.size() - shown));
}

Json ObjectJson(const AffectedObject& affected) {
  Json object;
  object["object"] = ToUtf8(affected.object);
  if (!affected.path.empty()) object["path"] = ToUtf8(affected.path);
  if (!affected.detail.empty()) object["detail"] = ToUtf8(affected.detail);
  return object;
}

Json FindingJson(const CheckFinding& finding) {
  Json object;
  object["code"] = finding.check->code;
  object["severity"] = SeverityText(finding.check->severity);
  object["what"] = finding.check->what;
  object["advice"] = finding.check->advice;
  object["objects"] = Json::array();
  for (const AffectedObject& affected : finding.objects) {
    object["objects"].push_back(ObjectJson(affected));
  }
  return object;
}

}  // namespace

void WriteFindings(Output& output, const std::vector<CheckFinding>& findings) {
  if (findings.empty()) output.Write("No problems found in this inventory.\n");
  bool isFirst = true;
  for (const CheckFinding& finding : findings) {
    if (!isFirst) output.Write("\n");
    isFirst = false;
    const Check& check = *finding.check;
    output.Write(fmt::format("{}: {}\n", SeverityText(check.severity), check.code));
    output.Write(fmt::format("  {}\n", check.what));
    WriteObjects(output, finding.objects);
    output.Write(fmt::format("  Advice: {}\n", check.advice));
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

bool AreDoubtful(const std::vector<CheckFinding>& findings) {
  return std::any_of(findings.begin(), findings.end(), [](const CheckFinding& finding) {
    return finding.check->severity != Severity::kNote;
  });
}

}  // namespace pciinfo
