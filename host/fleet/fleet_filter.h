// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/fleet/conditions.h"

namespace pciinfo {

/// Adds the condition of "KEY=VALUE,KEY=VALUE" texts: a row matches a text if it matches all its
/// terms, and the filter if it matches any text. `keys` are those that can be used. Throws
/// UsageError, which lists them, for invalid texts.
void AddFilter(const std::vector<std::string>& texts, const std::vector<std::string>& keys,
               Conditions& conditions);

/// The keys of all questions.
std::vector<std::string> FleetFilterKeys();

/// Returns the keys and their meaning for the help text, one per line.
std::string FleetFilterHelp();

}  // namespace pciinfo
