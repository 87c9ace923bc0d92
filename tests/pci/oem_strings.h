// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

/// An OEM Strings structure (SMBIOS 7.12) with these strings.
inline std::vector<unsigned char> OemStrings(const std::vector<std::string>& strings) {
  std::vector<unsigned char> bytes{11, 5, 0, 0, static_cast<unsigned char>(strings.size())};
  for (const std::string& text : strings) {
    bytes.insert(bytes.end(), text.begin(), text.end());
    bytes.push_back(0);
  }
  if (strings.empty()) bytes.push_back(0);
  bytes.push_back(0);
  return bytes;
}
