// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <soci/soci.h>

#include <memory>

#include "host/fleet/fleet_database.h"

namespace pciinfo {

/// Makes what asks a PostgreSQL database. From then on the session is in a transaction that can
/// only read.
std::unique_ptr<FleetDatabase> MakePostgresqlReader(std::unique_ptr<soci::session> session);

}  // namespace pciinfo
