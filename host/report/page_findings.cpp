// SPDX-License-Identifier: Apache-2.0
#include "host/report/page_findings.h"

#include <fmt/format.h>

namespace pciinfo {
namespace {

std::string ObjectText(const AffectedObject& object) {
  std::string text = object.object;
  if (!object.name.empty()) text += "  " + object.name;
  return object.detail.empty() ? text : text + ": " + object.detail;
}

void WriteFinding(Markup& markup, const CheckFinding& finding) {
  const char* const severity = SeverityText(finding.severity);
  markup.Open("li", {{"class", severity}});
  markup.Element("strong", {}, severity);
  markup.Text(fmt::format(" {}", finding.what));
  for (const AffectedObject& object : finding.objects)
    markup.Element("div", {}, ObjectText(object));
  markup.Element("div", {}, fmt::format("Advice: {}", finding.advice));
  markup.CloseLine();
}

}  // namespace

void WriteFindings(Markup& markup, const std::vector<CheckFinding>& findings) {
  if (findings.empty()) return markup.Element("p", {}, "pciinfo check finds nothing.");
  markup.Open("ul", {{"class", "changes"}});
  for (const CheckFinding& finding : findings) WriteFinding(markup, finding);
  markup.CloseLine();
}

}  // namespace pciinfo
