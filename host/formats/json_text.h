// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "framework/cim_value.h"
#include "host/console/output.h"

namespace pciinfo {

/// Writes `bytes`, converted by ToUtf8, as a JSON string with quotes. Unsafe characters (see
/// IsUnsafe) are escaped.
void WriteJsonString(Output& output, std::string_view bytes);

/// Writes a value as JSON: numbers and booleans as such; texts, datetimes and the paths of
/// references as strings; null as null. Arrays are written element by element.
void WriteJsonValue(Output& output, const NQZMVTQ20::TCIMValue& value);

}  // namespace pciinfo
