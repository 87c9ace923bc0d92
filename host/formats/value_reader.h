#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "framework/cim_value.h"

namespace pciinfo {

/// A number as a value of an integer type; no value when it does not fit into that type, or the
/// type is none of integers.
std::optional<NQZMVTQ20::TCIMValue> IntegerValue(NQZMVTQ20::TCIMValue::TCIMType type,
                                                 std::uint64_t number);
std::optional<NQZMVTQ20::TCIMValue> IntegerValue(NQZMVTQ20::TCIMValue::TCIMType type,
                                                 std::int64_t number);
/// The same for a decimal text with nothing around it.
std::optional<NQZMVTQ20::TCIMValue> IntegerValue(NQZMVTQ20::TCIMValue::TCIMType type,
                                                 std::string_view text);

}  // namespace pciinfo
