// SPDX-License-Identifier: Apache-2.0
#include "host/check/finding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <set>

#include "host/check/class_checks.h"
#include "host/check/machine_checks.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The rows of the tables in docs/findings.md, "severity | what | advice" by code.
std::map<std::string, std::string> DocumentedChecks() {
  std::map<std::string, std::string> rows;
  std::ifstream file(FINDINGS_DOCUMENT);
  const std::regex pattern(R"(\| `([a-z-]+)` \| ((error|warning|note) \| .*) \|)");
  for (std::string line; std::getline(file, line);) {
    std::smatch match;
    if (std::regex_match(line, match, pattern)) rows[match[1]] = match[2];
  }
  return rows;
}

template <class Facts>
void AddRows(const std::vector<Check<Facts>>& checks, std::map<std::string, std::string>& rows) {
  for (const Check<Facts>& check : checks) {
    const bool isNew = rows.emplace(check.code, std::string(SeverityText(check.severity)) + " | " +
                                                    check.what + " | " + check.advice)
                           .second;
    EXPECT_TRUE(isNew) << check.code << " is the code of two checks";
    EXPECT_THAT(check.what, testing::MatchesRegex("[^\n]+\\."));
    EXPECT_THAT(check.advice, testing::MatchesRegex("[^\n]+\\."));
  }
}

TEST(Findings, AreExactlyTheDocumentedOnes) {
  std::map<std::string, std::string> rows;
  AddRows(MachineChecks(), rows);
  AddRows(ClassChecks(), rows);
  EXPECT_EQ(rows, DocumentedChecks());
  std::set<std::string> codes;
  for (const std::string& code : FindingCodes()) codes.insert(code);
  EXPECT_EQ(codes.size(), rows.size());
}

std::vector<CheckFinding> OneOfEach() {
  return {{"a", Severity::kNote, "", "", {}},
          {"b", Severity::kWarning, "", "", {}},
          {"c", Severity::kError, "", "", {}}};
}

std::vector<std::string> ChosenCodes(const FindingChoice& choice) {
  std::vector<std::string> codes;
  for (const CheckFinding& finding : Chosen(OneOfEach(), choice)) codes.emplace_back(finding.code);
  return codes;
}

TEST(FindingChoice, LeavesOutWhatIsIgnoredOrLessGrave) {
  EXPECT_THAT(ChosenCodes({}), ElementsAre("a", "b", "c"));
  EXPECT_THAT(ChosenCodes({Severity::kWarning, {}}), ElementsAre("b", "c"));
  EXPECT_THAT(ChosenCodes({Severity::kError, {}}), ElementsAre("c"));
  EXPECT_THAT(ChosenCodes({Severity::kNote, {"a", "c"}}), ElementsAre("b"));
  EXPECT_THAT(ChosenCodes({Severity::kError, {"c"}}), IsEmpty());
}

TEST(Findings, AreComparedByGravity) {
  EXPECT_FALSE(HasFinding({}, Severity::kNote));
  const std::vector<CheckFinding> warning = {OneOfEach()[1]};
  EXPECT_TRUE(HasFinding(warning, Severity::kNote));
  EXPECT_TRUE(HasFinding(warning, Severity::kWarning));
  EXPECT_FALSE(HasFinding(warning, Severity::kError));
}

TEST(Severity, HasATextThatCanBeRead) {
  for (const Severity severity : {Severity::kError, Severity::kWarning, Severity::kNote}) {
    EXPECT_EQ(SeverityOf(SeverityText(severity)), severity);
  }
}

}  // namespace
}  // namespace pciinfo
