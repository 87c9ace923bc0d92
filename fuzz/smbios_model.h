// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

/// Returns the structures of an SMBIOS table, each with its strings and the two zero bytes after
/// them. Ends after `most` structures (0: no limit), after the first of type 127 if `endsAtMarker`,
/// and before one with a length below 4 or without an end.
inline std::vector<std::string> PlainStructures(std::string_view table, std::size_t most = 0,
                                                bool endsAtMarker = false) {
  std::vector<std::string> structures;
  while (table.size() >= 4 && (most == 0 || structures.size() < most)) {
    const auto type = static_cast<unsigned char>(table[0]);
    const auto length = static_cast<unsigned char>(table[1]);
    if (length < 4 || length > table.size()) break;
    std::size_t end = length;
    while (end + 1 < table.size() && (table[end] != '\0' || table[end + 1] != '\0')) ++end;
    if (end + 1 >= table.size()) break;
    structures.emplace_back(table.substr(0, end + 2));
    table.remove_prefix(end + 2);
    if (endsAtMarker && type == 127) break;
  }
  return structures;
}

}  // namespace fuzz
