// SPDX-License-Identifier: Apache-2.0
#include "host/fleet/questions.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <charconv>

#include "host/base/errors.h"
#include "host/fleet/conditions.h"
#include "host/fleet/find_statement.h"
#include "host/fleet/fleet_filter.h"
#include "host/fleet/question_list.h"
#include "host/fleet/since.h"

namespace pciinfo {
namespace {

void RefuseForOthers(bool isGiven, const FleetRequest& request, const char* option,
                     const char* question) {
  if (!isGiven || request.question == question) return;
  throw UsageError(fmt::format("{} belongs to \"fleet {}\"", option, question));
}

void CheckRequest(const FleetRequest& request) {
  const std::string& question = request.question;
  RefuseForOthers(request.onlyFree, request, "--free", "slots");
  RefuseForOthers(!request.width.empty(), request, "--width", "slots");
  RefuseForOthers(!request.since.empty(), request, "--since", "changes");
  const bool needsText = question == "find" || question == "sql";
  if (needsText && request.text.empty()) {
    throw UsageError(fmt::format("\"fleet {}\" needs {}", question,
                                 question == "sql" ? "a query" : "a text to look for"));
  }
  if (!needsText && question != "firmware" && !request.text.empty()) {
    throw UsageError(fmt::format("\"fleet {}\" takes no further word: leave out \"{}\"", question,
                                 request.text));
  }
  if (!request.filters.empty() && FleetQuestionNamed(question).keys.empty()) {
    throw UsageError(fmt::format("--filter cannot be used with \"fleet {}\"", question));
  }
}

/// The lanes of "x16" or "16".
unsigned LanesOf(const std::string& width) {
  const char* begin = width.c_str() + (width.starts_with('x') ? 1 : 0);
  const char* const end = width.c_str() + width.size();
  unsigned lanes = 0;
  const auto [rest, error] = std::from_chars(begin, end, lanes);
  if (error == std::errc() && rest == end && lanes >= 1 && lanes <= 64) return lanes;
  throw UsageError(fmt::format("--width: \"{}\" is no width: use x1 to x64", width));
}

void AddConditions(const FleetRequest& request, std::chrono::sys_seconds now,
                   Conditions& conditions) {
  if (request.onlyFree) conditions.Require("state = 'empty'");
  if (!request.width.empty()) {
    conditions.Require(fmt::format("lanes >= {}", LanesOf(request.width)));
  }
  if (!request.since.empty()) {
    conditions.Require("at >= " + conditions.Bind(SinceTime(request.since, now)));
  }
  if (!request.text.empty()) RequireCard(request.text, "vendor || ' ' || product", conditions);
}

/// What kept rows out of an answer, as the end of a sentence.
std::string LimitsText(const FleetRequest& request) {
  std::string limits;
  if (!request.width.empty()) limits += fmt::format(" of at least x{}", LanesOf(request.width));
  if (request.onlyFree) limits += " is known to be free";
  if (!request.since.empty()) limits += " since " + request.since;
  if (!request.text.empty()) limits += fmt::format(" matches \"{}\"", request.text);
  if (!request.filters.empty()) {
    limits += fmt::format(" with the filter {}", fmt::join(request.filters, " or "));
  }
  return limits.empty() ? " is known" : limits;
}

}  // namespace

std::vector<std::string> FleetQuestions() {
  std::vector<std::string> names;
  for (const FleetQuestion& question : AllFleetQuestions()) names.push_back(question.name);
  return names;
}

std::string FleetQuestionHelp() {
  std::string help = "Questions:\n";
  for (const FleetQuestion& question : AllFleetQuestions()) {
    help += fmt::format("  {:10} {}\n", question.name, question.help);
  }
  return help;
}

FleetStatement StatementOf(const FleetRequest& request, std::chrono::sys_seconds now) {
  CheckRequest(request);
  if (request.question == "sql") return {request.text, {}, true};
  if (request.question == "find") return FindStatement(request.text);
  const FleetQuestion& question = FleetQuestionNamed(request.question);
  Conditions conditions;
  AddConditions(request, now, conditions);
  AddFilter(request.filters, question.keys, conditions);
  return conditions.Make(question.select, question.end);
}

std::vector<ShownColumn> ColumnsOf(const FleetRequest& request) {
  return FleetQuestionNamed(request.question).columns;
}

std::string ListNameOf(const FleetRequest& request) {
  if (request.question == "sql") return "rows";
  return request.question == "find" ? "found" : request.question;
}

std::string WhyEmpty(const FleetRequest& request, std::int64_t machines) {
  if (request.question == "sql") return "the query has no rows";
  if (machines == 0) {
    return "the database has no machines yet: \"pciinfo store\" writes them into it";
  }
  return FleetQuestionNamed(request.question).nothing + LimitsText(request);
}

}  // namespace pciinfo
