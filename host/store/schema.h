// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/store/database.h"

namespace pciinfo {

/// The version of the schema that this program reads and writes.
int NewestVersion();

/// Returns the version of a database's schema; 0 for a database without one. Throws
/// std::runtime_error for an SQLite file that another program uses.
int VersionOf(Database& database);

/// Brings the schema of a database to a version, in one transaction. Throws std::runtime_error,
/// which says what to do, for a database of a newer version.
void Migrate(Database& database, int version = NewestVersion());

/// Splits a migration into its statements, without their comments and last semicolons.
std::vector<std::string> StatementsOf(std::string_view migration);

}  // namespace pciinfo
