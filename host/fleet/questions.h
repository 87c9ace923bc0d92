// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "host/fleet/fleet_database.h"
#include "host/fleet/row_writer.h"

namespace pciinfo {

/// What the user asks of a database of machines.
struct FleetRequest {
  std::string question;                   ///< one of FleetQuestions
  std::string text = {};                  ///< of `find`, `firmware` and `sql`
  std::vector<std::string> filters = {};  ///< see AddFilter
  bool onlyFree = false;                  ///< of `slots`
  std::string width = {};                 ///< of `slots`: "x16"
  std::string since = {};                 ///< of `changes`, see SinceTime
};

/// The questions.
std::vector<std::string> FleetQuestions();

/// Returns the questions and what they answer for the help text, one per line.
std::string FleetQuestionHelp();

/// Makes the statement that answers a request. Throws UsageError for what the question does not
/// take, and for wrong values.
FleetStatement StatementOf(const FleetRequest& request, std::chrono::sys_seconds now);

/// The columns of the table that answers a question; none: all, under their own names.
std::vector<ShownColumn> ColumnsOf(const FleetRequest& request);

/// The name of the list of rows in JSON and YAML.
std::string ListNameOf(const FleetRequest& request);

/// Says why an answer has no rows, as a sentence for standard error. `machines` is the number of
/// machines in the database.
std::string WhyEmpty(const FleetRequest& request, std::int64_t machines);

}  // namespace pciinfo
