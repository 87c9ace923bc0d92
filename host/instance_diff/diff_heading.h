// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <set>
#include <string>

namespace pciinfo {

/// What is printed besides the changes.
struct DiffHeading {
  std::string before;  ///< the name of the old side
  std::string after;   ///< the name of the new side
  std::set<std::string> ignored;
};

}  // namespace pciinfo
