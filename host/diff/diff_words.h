#pragma once

#include <string>

#include "framework/cim_value.h"

namespace pciinfo {

/// The change of a property's value in words, printable: for properties that mean something to
/// people in their terms ("revision a1 -> a2"), for all others as "NAME: old -> new".
std::string ChangeText(const std::string& property, const NQZMVTQ20::TCIMValue& before,
                       const NQZMVTQ20::TCIMValue& after);

}  // namespace pciinfo
