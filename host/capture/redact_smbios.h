#pragma once

#include <string>

namespace pciinfo {

/// Blanks serial numbers, asset tags, UUIDs and vendors' own data in an SMBIOS table: characters of
/// strings become 'X', other bytes 0. Slots, lengths and string numbers stay. Bytes behind the last
/// structure become 0 as well. Throws TVTQException when the entry point is not valid, so that
/// nobody can tell what stands in the table.
void RedactSmBios(const std::string& entryPoint, std::string& table);

}  // namespace pciinfo
