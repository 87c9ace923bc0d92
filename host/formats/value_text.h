#pragma once

#include <optional>
#include <string>

#include "framework/cim_value.h"
#include "runtime/repository.h"

namespace pciinfo {

/// An integer value, signed or unsigned, in decimal. Throws TVTQException for everything else.
std::string IntegerText(const NQZMVTQ20::TCIMValue& value);

/// Whether values of a type are texts: strings, datetimes, and references, whose path is one.
bool IsText(NQZMVTQ20::TCIMValue::TCIMType type);

/// A finite real number with a decimal point, as CIM writes it. Throws TVTQException for everything
/// that is no real number.
std::string RealText(const NQZMVTQ20::TCIMValue& value);

/// A scalar for people: texts as they are, booleans as "true" and "false", null as "".
std::string ScalarText(const NQZMVTQ20::TCIMValue& value);

// Properties of an instance. All throw TVTQException when the class does not declare the property
// or the value is of another kind.

/// A text; empty when it is unset.
std::string TextOf(const vtq::Instance& instance, const std::string& property);
/// An unsigned integer, or the first element of an array of them; no value when it is unset.
std::optional<unsigned> NumberOf(const vtq::Instance& instance, const std::string& property);
/// A boolean; no value when it is unset.
std::optional<bool> BooleanOf(const vtq::Instance& instance, const std::string& property);

}  // namespace pciinfo
