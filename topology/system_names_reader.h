// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "topology/kernel_directory.h"
#include "topology/system_names.h"

namespace topology {

/// Finds the names below the directory of a function, whose entries are `entries`. Opens only
/// directories whose names mean something, follows no link, and gives up below the 16th level and
/// after 4,096 directories.
SystemNames ReadSystemNames(const Directory& device, const std::vector<std::string>& entries);

}  // namespace topology
