// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "topology/machine.h"
#include "topology/slots.h"

namespace topology {

/// Returns which rule the resolution of the machine breaks; empty when it keeps all of them: every
/// function is in at most one slot or one shared place, what it is told to be agrees with that,
/// nothing is certain without a source that is named, and names of slots are unique.
std::string BrokenRule(const Machine& machine, const Resolution& resolution);

}  // namespace topology
