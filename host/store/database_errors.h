// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <soci/soci.h>

#include <string>

namespace pciinfo {

/// Returns what an error of the database of `target` means, in one line without its password.
std::string ExplainError(const soci::soci_error& error, const std::string& target);

}  // namespace pciinfo
