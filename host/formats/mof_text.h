// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "framework/cim_value.h"

namespace pciinfo {

/// Returns `bytes`, converted by ToUtf8, as a MOF string with quotes (DSP0004, annex A). Only
/// unsafe characters (see IsUnsafe), quotes and backslashes are escaped.
std::string MofString(std::string_view bytes);

/// Returns a scalar as MOF: a reference as the string of its path; NULL for null, infinity and NaN,
/// which MOF cannot express.
std::string MofScalar(const NQZMVTQ20::TCIMValue& value);

}  // namespace pciinfo
