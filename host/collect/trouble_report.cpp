// SPDX-License-Identifier: Apache-2.0
#include "host/collect/trouble_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace pciinfo {

using NQZMVTQ20::ILogger;

TroubleReport::TroubleReport(Circumstances circumstances)
    : circumstances_(std::move(circumstances)) {}

void TroubleReport::BeginClass(std::string className) {
  className_ = std::move(className);
  circumstances_.serviceFailure.clear();
}

void TroubleReport::EndClass() { className_.clear(); }

void TroubleReport::AddRecord(ILogger::EVTQLogSeverity severity, const std::string& text) {
  if (!IsCollecting() || severity > ILogger::kStatus) return;
  Add(JudgeRecord(severity, text, circumstances_));
  // This record was the plug-in's reaction to the failure; later records have other reasons.
  circumstances_.serviceFailure.clear();
}

void TroubleReport::AddServiceFailure(const std::string& description) {
  circumstances_.serviceFailure = description;
}

void TroubleReport::AddDoubt(const std::string& description) {
  Add({Verdict::kTrouble, description});
}

void TroubleReport::AddFailure(const std::string& why) { Add({Verdict::kClassLost, why}); }

void TroubleReport::Add(const Finding& finding) {
  if (finding.verdict == Verdict::kNothing) return;
  const bool lostClass = finding.verdict == Verdict::kClassLost;
  const std::string& about = lostClass ? className_ : finding.subject;
  if (!seen_.emplace(finding.text, about).second) return;
  std::vector<Told>& told = finding.verdict == Verdict::kNotice ? notices_ : troubles_;
  const auto alike = std::find_if(told.begin(), told.end(), [&finding](const Told& other) {
    return !finding.ofMany.empty() && other.finding.ofMany == finding.ofMany;
  });
  if (alike != told.end()) {
    ++alike->count;
  } else {
    told.push_back({finding, className_});
  }
}

std::string TroubleReport::LineOf(const Told& told) {
  const Finding& finding = told.finding;
  std::string text =
      told.count == 1
          ? finding.text
          : fmt::format(fmt::runtime(finding.ofMany), fmt::arg("count", told.count),
                        fmt::arg("others", told.count - 1), fmt::arg("first", finding.subject));
  if (finding.verdict == Verdict::kNotice || told.className.empty()) return text;
  return told.className + ": " + text;
}

std::vector<std::string> TroubleReport::GetLines() const {
  std::vector<std::string> lines;
  for (const std::vector<Told>* told : {&notices_, &troubles_}) {
    for (const Told& one : *told) lines.push_back(LineOf(one));
  }
  return lines;
}

std::vector<std::string> TroubleReport::GetTroubles() const {
  std::vector<std::string> lines;
  for (const Told& one : troubles_) lines.push_back(LineOf(one));
  return lines;
}

}  // namespace pciinfo
