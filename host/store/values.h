// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace pciinfo {

/// A value of a database as text; nothing for NULL. Both systems convert texts of numbers and times
/// to the type of their column.
using Value = std::optional<std::string>;
using Row = std::vector<Value>;

}  // namespace pciinfo
