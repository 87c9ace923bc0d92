// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace pciinfo {

/// Blanks serial numbers, asset tags, UUIDs and vendor-specific data in an SMBIOS table: characters
/// of strings become 'X', other bytes 0. Slots, lengths and string numbers stay. Bytes after the
/// last structure become 0. Throws TVTQException when the entry point is not valid, because the
/// structures cannot be found then.
void RedactSmBios(const std::string& entryPoint, std::string& table);

}  // namespace pciinfo
