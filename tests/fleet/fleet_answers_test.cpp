// SPDX-License-Identifier: Apache-2.0

// The answers of `pciinfo fleet` about the machines of examples/fleet, in both databases.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "tests/fleet/fleet_under_test.h"

namespace {

/// A question, and the answer that a page shows.
struct Shown {
  std::string question;
  std::string answer;
};

std::vector<std::string> LinesIn(const std::string& file) {
  std::ifstream stream(file);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// A line "$ WORDS" and the lines below it, up to an empty one.
std::vector<Shown> QuestionsIn(const std::string& file) {
  std::vector<Shown> questions;
  for (const std::string& line : LinesIn(file)) {
    if (line.starts_with("$ ")) {
      questions.push_back({line.substr(2), ""});
    } else if (!questions.empty() && !line.empty()) {
      questions.back().answer += line + "\n";
    }
  }
  return questions;
}

/// The blocks of SQL in a page, each with the block below it.
std::vector<Shown> QueriesIn(const std::string& file) {
  std::vector<Shown> queries;
  std::string Shown::*part = nullptr;
  for (const std::string& line : LinesIn(file)) {
    if (line == "```sql") {
      queries.emplace_back();
      part = &Shown::question;
    } else if (line == "```text") {
      part = &Shown::answer;
    } else if (line.starts_with("```")) {
      part = nullptr;
    } else if (part != nullptr) {
      queries.back().*part += line + "\n";
    }
  }
  return queries;
}

class FleetAnswers : public testing::TestWithParam<DatabaseKind> {
 protected:
  /// Runs a shell command in which "fleet" stands for "pciinfo fleet" with the database.
  static std::string Answer(const std::string& words) {
    RunResult result =
        RunProcess({"sh", "-c", std::string(PCIINFO_PROGRAM) + " fleet \"$DATABASE\" " + words},
                   {{"DATABASE", ExampleFleet(GetParam())}});
    std::erase(result.out, '\r');  // CSV has them at the ends of lines
    return result.out + result.err;
  }
};

TEST_P(FleetAnswers, AreThoseOfTheList) {
  const std::vector<Shown> questions = QuestionsIn(FLEET_QUESTIONS);
  ASSERT_GT(questions.size(), 40U);
  for (const Shown& shown : questions) {
    EXPECT_EQ(Answer(shown.question), shown.answer) << shown.question;
  }
}

TEST_P(FleetAnswers, ToTheQueriesAreThoseOfThePage) {
  const std::vector<Shown> queries = QueriesIn(FLEET_PAGE);
  ASSERT_EQ(queries.size(), 10U);
  for (const Shown& shown : queries) {
    const RunResult result = RunFleet({ExampleFleet(GetParam()), "sql", shown.question});
    EXPECT_EQ(result.out + result.err, shown.answer) << shown.question;
    EXPECT_EQ(result.status, 0);
  }
}

TEST_P(FleetAnswers, WithoutRowsEndWell) {
  for (const char* format : {"table", "json", "jsonl", "csv", "yaml"}) {
    const RunResult result =
        RunFleet({ExampleFleet(GetParam()), "find", "no such card", "--format", format});
    EXPECT_EQ(result.status, 0) << format;
    EXPECT_EQ(result.err, "pciinfo: nothing matches \"no such card\"\n");
  }
  EXPECT_EQ(RunFleet({ExampleFleet(GetParam()), "find", "no such", "--format", "json"}).out,
            "{\"found\":[]}\n");
  EXPECT_EQ(RunFleet({ExampleFleet(GetParam()), "find", "no such", "--format", "yaml"}).out,
            "found: []\n");
}

TEST_P(FleetAnswers, AreAsTheJsonSchemaSays) {
  constexpr const char* kCheck = R"(
import json, sys, jsonschema
schema = json.load(open(sys.argv[1]))
fleet = [kind for kind in schema["oneOf"] if kind["$ref"].startswith("#/$defs/fleet")]
validator = jsonschema.Draft202012Validator({"$defs": schema["$defs"], "oneOf": fleet})
answer = json.load(sys.stdin)
for error in validator.iter_errors(answer):
    print([fault.message for fault in error.context or [error]])
validator = jsonschema.Draft202012Validator(schema)
print(len(fleet), validator.is_valid(answer), len(list(answer.values())[0]) > 0)
answer[list(answer)[0]].append({"machine": "a"})
print(validator.is_valid(answer))
)";
  for (const char* question : {"machines", "cards", "slots", "find 10de:2231", "find eth0",
                               "firmware", "changes", "findings"}) {
    const RunResult result =
        RunProcess({"sh", "-c",
                    std::string(PCIINFO_PROGRAM) + " fleet \"$DATABASE\" " + question +
                        " --format json | /usr/bin/python3 -c \"$CHECK\" " + JSON_SCHEMA},
                   {{"DATABASE", ExampleFleet(GetParam())}, {"CHECK", kCheck}});
    EXPECT_EQ(result.out + result.err, "7 True True\nFalse\n") << question;
  }
}

INSTANTIATE_TEST_SUITE_P(Sqlite, FleetAnswers, testing::Values(DatabaseKind::kSqlite));
INSTANTIATE_TEST_SUITE_P(Postgresql, FleetAnswers, testing::Values(DatabaseKind::kPostgresql));

}  // namespace
