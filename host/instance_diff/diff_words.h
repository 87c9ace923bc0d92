// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "framework/cim_value.h"

namespace pciinfo {

/// Describes the change of a property in printable words: well-known properties by name and value
/// in words ("hardware revision a1 -> a2"), all others as "NAME: old -> new".
std::string ChangeText(const std::string& property, const NQZMVTQ20::TCIMValue& before,
                       const NQZMVTQ20::TCIMValue& after);

}  // namespace pciinfo
