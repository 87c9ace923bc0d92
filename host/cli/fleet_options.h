// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/fleet/questions.h"

namespace CLI {
class App;
}

namespace pciinfo {

/// Adds the arguments and options of `fleet`. Parsing fills `database` and `request`.
void AddFleetOptions(CLI::App& fleet, std::string& database, FleetRequest& request);

}  // namespace pciinfo
