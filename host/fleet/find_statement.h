// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "host/fleet/conditions.h"

namespace pciinfo {

/// Makes the statement of `find`: the functions to which a text leads.
FleetStatement FindStatement(const std::string& text);

/// Adds the condition that a card has the vendor and device IDs, or the part of a name, that a text
/// means. `name` is what is searched for the part.
void RequireCard(const std::string& text, const std::string& name, Conditions& conditions);

}  // namespace pciinfo
