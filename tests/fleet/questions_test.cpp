// SPDX-License-Identifier: Apache-2.0
#include "host/fleet/questions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/base/errors.h"
#include "host/fleet/fleet_filter.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

FleetStatement Make(const FleetRequest& request) { return StatementOf(request, {}); }

/// What is wrong with a request; empty if nothing is.
std::string Error(const FleetRequest& request) {
  try {
    Make(request);
    return "";
  } catch (const UsageError& error) {
    return error.what();
  }
}

FleetRequest Filtered(const char* question, std::vector<std::string> filters) {
  FleetRequest request;
  request.question = question;
  request.filters = std::move(filters);
  return request;
}

TEST(FleetFilter, MakesValuesOfWhatTheUserWrites) {
  const FleetStatement statement =
      Make(Filtered("cards", {"vendor=0x10DE,driver=a' OR '1'='1", "slot=none,address=1:0.0"}));
  EXPECT_THAT(statement.sql,
              HasSubstr(" WHERE ((vendor_id = $1 AND driver = $2) OR (slot = $3 AND address = $4)) "
                        "ORDER BY "));
  EXPECT_THAT(statement.values, ElementsAre("10de", "a' OR '1'='1", "", "0000:01:00.0"));
  EXPECT_FALSE(statement.isOfUser);
}

TEST(FleetFilter, TakesPatterns) {
  const FleetStatement statement = Make(Filtered("machines", {"machine=100%_!*"}));
  EXPECT_THAT(statement.sql, HasSubstr("(LOWER(machine) LIKE LOWER(CAST($1 AS TEXT)) ESCAPE '!')"));
  EXPECT_THAT(statement.values, ElementsAre("100!%!_!!%"));
  EXPECT_THAT(Make(Filtered("cards", {"class=02"})).values, ElementsAre("02%"));
  EXPECT_THAT(Make(Filtered("cards", {"class=0200"})).values, ElementsAre("0200"));
  EXPECT_THAT(Make(Filtered("cards", {"subsystem=10de:147e"})).values, ElementsAre("10de", "147e"));
}

TEST(FleetFilter, RefusesOtherTexts) {
  EXPECT_EQ(Error(Filtered("machines", {"driver=igb"})),
            "invalid filter \"driver=igb\": use KEY=VALUE; the keys are machine, maker, product, "
            "bios");
  for (const char* text : {"", "machine", "=a", "machine=a,", "vendor=xyz", "vendor=12345",
                           "class=020", "class=", "class=020000",
                           "subsystem=10de:", "subsystem=:10de", "address=slot", "device="}) {
    EXPECT_THAT(Error(Filtered("cards", {text})), HasSubstr("invalid filter")) << text;
  }
  EXPECT_EQ(Error({.question = "find", .text = "a", .filters = {"machine=a"}}),
            "--filter cannot be used with \"fleet find\"");
}

TEST(FleetQuestions, RefuseOptionsOfOthers) {
  EXPECT_EQ(Error({.question = "cards", .onlyFree = true}), "--free belongs to \"fleet slots\"");
  EXPECT_EQ(Error({.question = "cards", .width = "x16"}), "--width belongs to \"fleet slots\"");
  EXPECT_EQ(Error({.question = "slots", .since = "7d"}), "--since belongs to \"fleet changes\"");
  EXPECT_EQ(Error({.question = "find"}), "\"fleet find\" needs a text to look for");
  EXPECT_EQ(Error({.question = "sql"}), "\"fleet sql\" needs a query");
  EXPECT_THAT(Error({.question = "slots", .text = "free"}), EndsWith("leave out \"free\""));
  for (const char* width : {"x0", "x65", "16x", "x", "wide", "-1"}) {
    EXPECT_THAT(Error({.question = "slots", .width = width}), HasSubstr("is no width"));
  }
}

TEST(FleetQuestions, TakeTheQueryOfTheUserAsItIs) {
  const FleetStatement statement = Make({.question = "sql", .text = "SELECT $1"});
  EXPECT_EQ(statement.sql, "SELECT $1");
  EXPECT_TRUE(statement.isOfUser);
}

TEST(FleetQuestions, AreAllExplained) {
  for (const std::string& question : FleetQuestions()) {
    EXPECT_THAT(FleetQuestionHelp(), HasSubstr("\n  " + question + " ")) << question;
  }
}

TEST(FleetQuestions, SayWhyAnAnswerIsEmpty) {
  EXPECT_EQ(WhyEmpty({.question = "slots",
                      .filters = {"machine=a", "machine=b"},
                      .onlyFree = true,
                      .width = "x16"},
                     3),
            "no slot of at least x16 is known to be free with the filter machine=a or machine=b");
  EXPECT_EQ(WhyEmpty({.question = "findings"}, 3), "no finding is known");
  EXPECT_THAT(WhyEmpty({.question = "cards"}, 0), HasSubstr("no machines yet"));
  EXPECT_EQ(WhyEmpty({.question = "sql"}, 0), "the query has no rows");
}

}  // namespace
}  // namespace pciinfo
