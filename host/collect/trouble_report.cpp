// SPDX-License-Identifier: Apache-2.0
#include "host/collect/trouble_report.h"

#include <utility>

namespace pciinfo {

using NQZMVTQ20::ILogger;

TroubleReport::TroubleReport(bool hasPciBus, bool isCapture) {
  circumstances_.hasPciBus = hasPciBus;
  circumstances_.isCapture = isCapture;
}

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
  const std::string line = LineOf(finding);
  const bool lostClass = finding.verdict == Verdict::kClassLost;
  if (!told_.insert(lostClass ? line : finding.text).second) return;
  const bool isNotice = finding.verdict == Verdict::kNotice;
  (isNotice ? notices_ : troubles_).push_back(line);
}

std::string TroubleReport::LineOf(const Finding& finding) const {
  if (finding.verdict == Verdict::kNotice || className_.empty()) return finding.text;
  return className_ + ": " + finding.text;
}

std::vector<std::string> TroubleReport::GetLines() const {
  std::vector<std::string> lines = notices_;
  lines.insert(lines.end(), troubles_.begin(), troubles_.end());
  return lines;
}

}  // namespace pciinfo
