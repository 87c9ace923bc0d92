#include "host/check/check_view.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/console/text.h"
#include "host/console/utf8.h"

namespace pciinfo {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMostShown = 8;

void WriteDoubts(Output& output, const std::vector<Doubt>& doubts) {
  const std::size_t shown = doubts.size() > kMostShown + 1 ? kMostShown : doubts.size();
  for (std::size_t i = 0; i < shown; ++i) {
    const Doubt& doubt = doubts[i];
    output.Write("    " + Printable(doubt.object));
    if (!doubt.detail.empty()) output.Write("  " + Printable(doubt.detail));
    output.Write("\n");
  }
  if (shown == doubts.size()) return;
  output.Write(fmt::format("    and {} more (--format json shows all)\n", doubts.size() - shown));
}

Json DoubtJson(const Doubt& doubt) {
  Json object;
  object["object"] = ToUtf8(doubt.object);
  if (!doubt.path.empty()) object["path"] = ToUtf8(doubt.path);
  if (!doubt.detail.empty()) object["detail"] = ToUtf8(doubt.detail);
  return object;
}

Json FindingJson(const CheckFinding& finding) {
  Json object;
  object["code"] = finding.check->code;
  object["severity"] = SeverityText(finding.check->severity);
  object["what"] = finding.check->what;
  object["advice"] = finding.check->advice;
  object["objects"] = Json::array();
  for (const Doubt& doubt : finding.doubts) object["objects"].push_back(DoubtJson(doubt));
  return object;
}

}  // namespace

void WriteFindings(Output& output, const std::vector<CheckFinding>& findings) {
  if (findings.empty()) output.Write("Nothing about this inventory is known to be doubtful.\n");
  bool isFirst = true;
  for (const CheckFinding& finding : findings) {
    if (!isFirst) output.Write("\n");
    isFirst = false;
    const Check& check = *finding.check;
    output.Write(fmt::format("{}: {}\n", SeverityText(check.severity), check.code));
    output.Write(fmt::format("  {}\n", check.what));
    WriteDoubts(output, finding.doubts);
    output.Write(fmt::format("  Advice: {}\n", check.advice));
  }
}

void WriteFindingsJson(Output& output, const std::vector<CheckFinding>& findings) {
  output.Write("{\"findings\":[");
  bool isFirst = true;
  for (const CheckFinding& finding : findings) {
    output.Write(isFirst ? "\n" : ",\n");
    isFirst = false;
    output.Write(FindingJson(finding).dump());
  }
  output.Write(isFirst ? "]}\n" : "\n]}\n");
}

bool AreDoubtful(const std::vector<CheckFinding>& findings) {
  return std::any_of(findings.begin(), findings.end(), [](const CheckFinding& finding) {
    return finding.check->severity != Severity::kNote;
  });
}

}  // namespace pciinfo
