// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "framework/cim_value.h"

namespace pciinfo {

/// Converts a number to an integer type. Returns nothing if the number does not fit or the type is
/// not an integer type.
std::optional<NQZMVTQ20::TCIMValue> IntegerValue(NQZMVTQ20::TCIMValue::TCIMType type,
                                                 std::uint64_t number);
std::optional<NQZMVTQ20::TCIMValue> IntegerValue(NQZMVTQ20::TCIMValue::TCIMType type,
                                                 std::int64_t number);
/// The same for a text that consists of a decimal number only.
std::optional<NQZMVTQ20::TCIMValue> IntegerValue(NQZMVTQ20::TCIMValue::TCIMType type,
                                                 std::string_view text);

}  // namespace pciinfo
