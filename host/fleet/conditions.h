// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/fleet/fleet_database.h"

namespace pciinfo {

/// Collects the conditions of a statement and the values of its parameters. Texts of the user
/// become values, never a part of the statement.
class Conditions final {
 public:
  /// Returns the parameter that stands for a value: "$2".
  std::string Bind(std::string value);
  /// All conditions must hold.
  void Require(std::string condition) { conditions_.push_back(std::move(condition)); }

  /// Makes the statement `select` WHERE the conditions hold, `end`.
  FleetStatement Make(const std::string& select, const std::string& end) const;

 private:
  std::vector<std::string> conditions_;
  std::vector<std::string> values_;
};

/// The condition that a column has a text, in which "*" stands for any characters.
std::string IsText(const std::string& column, const std::string& text, Conditions& conditions);

/// The condition that a column contains a text, in upper or lower case.
std::string ContainsText(const std::string& column, const std::string& text,
                         Conditions& conditions);

}  // namespace pciinfo
