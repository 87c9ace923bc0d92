// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace pciinfo {

/// Whether the target of a user is the address of a PostgreSQL database, not a path.
bool IsPostgresql(const std::string& target);

/// Throws UsageError, which says what to write, for a target that is neither a path nor such an
/// address.
void CheckTarget(const std::string& target);

/// Returns the target for messages: an address without its password and its query.
std::string ShownTarget(const std::string& target);

/// Returns the text with "***" wherever it contains the password of the target.
std::string WithoutPassword(std::string text, const std::string& target);

}  // namespace pciinfo
