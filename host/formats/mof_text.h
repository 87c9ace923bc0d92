#pragma once

#include <string>
#include <string_view>

#include "framework/cim_value.h"

namespace pciinfo {

/// `bytes` (made UTF-8, see ToUtf8) as a MOF string with its quotes (DSP0004, annex A). Control
/// characters are escaped, the others stand as they are.
std::string MofString(std::string_view bytes);

/// A scalar as MOF: a reference as the string of its path, NULL for null and for the real numbers
/// that MOF cannot hold (infinity, NaN).
std::string MofScalar(const NQZMVTQ20::TCIMValue& value);

}  // namespace pciinfo
