// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/fleet/row_writer.h"

namespace pciinfo {

/// A question on one view of the database.
struct FleetQuestion {
  std::string name;
  std::string help;
  std::string select;                ///< the statement up to its conditions
  std::string end;                   ///< what comes after them
  std::vector<std::string> keys;     ///< of --filter; none: it takes no filter
  std::vector<ShownColumn> columns;  ///< of the table
  std::string nothing;               ///< "no machine": what there is none of in an empty answer
};

/// All questions, in the order of the help.
const std::vector<FleetQuestion>& AllFleetQuestions();

/// Finds a question by its name, which must be one of theirs.
const FleetQuestion& FleetQuestionNamed(const std::string& name);

}  // namespace pciinfo
