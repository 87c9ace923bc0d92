// SPDX-License-Identifier: Apache-2.0
#include "host/check/finding_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

using nlohmann::json;

CheckFinding Warning(std::vector<AffectedObject> objects) {
  return {"a-code", Severity::kWarning, "Something is odd.", "Look at it.", std::move(objects)};
}

CheckFinding Note(std::vector<AffectedObject> objects) {
  return {"b-code", Severity::kNote, "Something is usual.", "Leave it.", std::move(objects)};
}

using Write = void (*)(Output&, const std::vector<CheckFinding>&);

std::string Written(Write write, const std::vector<CheckFinding>& findings) {
  OutputToText output;
  write(output.Get(), findings);
  return output.Text();
}

TEST(CheckView, TextHasObjectsAndAdvice) {
  EXPECT_EQ(
      Written(
          &WriteFindings,
          {Warning({{"03:00.0", "path", "odd\x1b"}}),
           Note({{"Tag 1", "", ""}, {"01:00.0", "", "x4", "function", "0000:01:00.0", "A card"}})}),
      "warning: a-code\n"
      "  Something is odd.\n"
      "    03:00.0  odd?\n"
      "  Advice: Look at it.\n"
      "\n"
      "note: b-code\n"
      "  Something is usual.\n"
      "    Tag 1\n"
      "    01:00.0  A card  x4\n"
      "  Advice: Leave it.\n");
}

TEST(CheckView, TextCountsManyObjects) {
  const std::string nine =
      Written(&WriteFindings, {Note(std::vector<AffectedObject>(9, {"x", "", ""}))});
  EXPECT_THAT(nine, testing::Not(testing::HasSubstr("more")));
  const std::string ten =
      Written(&WriteFindings, {Note(std::vector<AffectedObject>(10, {"x", "", ""}))});
  EXPECT_THAT(ten, testing::HasSubstr("    and 2 more (--format json shows all)\n"));
}

TEST(CheckView, JsonHasEveryObject) {
  const std::vector<AffectedObject> objects(20, {"03:00.0", "/path", "caf\xe9"});
  const json document = json::parse(Written(&WriteFindingsJson, {Warning(objects)}));
  const json& finding = document.at("findings").at(0);
  EXPECT_EQ(finding.at("code"), "a-code");
  EXPECT_EQ(finding.at("severity"), "warning");
  EXPECT_EQ(finding.at("what"), "Something is odd.");
  EXPECT_EQ(finding.at("advice"), "Look at it.");
  ASSERT_EQ(finding.at("objects").size(), 20U);
  EXPECT_EQ(finding.at("objects").at(0),
            json({{"object", "03:00.0"}, {"path", "/path"}, {"detail", "caf\xc3\xa9"}}));
}

TEST(CheckView, JsonHasAddressesWithDomains) {
  const json document = json::parse(Written(
      &WriteFindingsJson, {Note({{"01:00.0", "", "x4", "function", "0000:01:00.0", "A card"}})}));
  EXPECT_EQ(document.at("findings").at(0).at("objects").at(0), json({{"object", "0000:01:00.0"},
                                                                     {"kind", "function"},
                                                                     {"name", "A card"},
                                                                     {"detail", "x4"}}));
}

TEST(CheckView, WithoutFindingsSaysSo) {
  EXPECT_EQ(Written(&WriteFindings, {}), "No findings.\n");
  EXPECT_EQ(json::parse(Written(&WriteFindingsJson, {})), json({{"findings", json::array()}}));
}

}  // namespace
}  // namespace pciinfo
