// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <soci/soci.h>

#include <memory>

#include "host/fleet/fleet_database.h"

namespace pciinfo {

/// Makes what asks an SQLite database. From then on the session can only read.
std::unique_ptr<FleetDatabase> MakeSqliteReader(std::unique_ptr<soci::session> session);

}  // namespace pciinfo
