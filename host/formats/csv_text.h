// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/console/output.h"

namespace pciinfo {

/// The end of a line of CSV (RFC 4180).
inline constexpr std::string_view kCsvLineEnd = "\r\n";

/// Writes a part of a field that stands in quotes: quotes in it are doubled.
void WriteInQuotes(Output& output, std::string_view text);

/// Writes one line: each text in quotes, nothing for an empty one.
void WriteCsvLine(Output& output, const std::vector<std::string>& texts);

}  // namespace pciinfo
