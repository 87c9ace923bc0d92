// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>
#include <vector>

namespace pciinfo {

/// The texts of migrations/*.sql in the order of their numbers: the first makes version 1 of the
/// schema, the second makes version 2 of that, and so on.
const std::vector<std::string_view>& Migrations();

}  // namespace pciinfo
