// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <set>
#include <string>
#include <vector>

#include "host/record/machine_record.h"

namespace pciinfo {

/// Returns the addresses of the functions that stand for their card: the first function of each
/// device that is neither a bridge nor virtual nor of the chip set. On a root bus each function is
/// a device of its own.
std::set<std::string> CardFunctions(const std::vector<RecordedFunction>& functions);

}  // namespace pciinfo
