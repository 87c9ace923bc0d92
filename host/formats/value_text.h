// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "framework/cim_value.h"
#include "runtime/repository.h"

namespace pciinfo {

/// Returns a signed or unsigned integer value in decimal. Throws TVTQException for other types.
std::string IntegerText(const NQZMVTQ20::TCIMValue& value);

/// Whether values of the type are written as texts: strings, datetimes and references (their path).
bool IsText(NQZMVTQ20::TCIMValue::TCIMType type);

/// Returns a finite real number with a decimal point, as CIM requires. Throws TVTQException for
/// other types.
std::string RealText(const NQZMVTQ20::TCIMValue& value);

/// Returns a scalar for people: texts unchanged, booleans as "true" or "false", null as "".
std::string ScalarText(const NQZMVTQ20::TCIMValue& value);

// Properties of an instance. All throw TVTQException if the class does not declare the property or
// the value has another type.

/// Returns a text; empty if unset.
std::string TextOf(const vtq::Instance& instance, const std::string& property);
/// Returns an unsigned integer, or the first element of an array of them; nothing if unset.
std::optional<unsigned> NumberOf(const vtq::Instance& instance, const std::string& property);
/// Returns a boolean; nothing if unset.
std::optional<bool> BooleanOf(const vtq::Instance& instance, const std::string& property);

}  // namespace pciinfo
