// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "framework/export.h"
#include "runtime/smbios_table.h"

namespace vtq {

/// Returns the BIOS version of the table's first BIOS information structure (DSP0134, 7.1: the
/// string whose number is at offset 5); empty if the structure or the string is missing.
VTQ_EXPORT std::string BiosVersion(const SmBiosTable& table);

/// TOSSpecific::GetBiosID for the tables in `directory`.
VTQ_EXPORT std::string BiosIdFrom(const std::string& directory);

}  // namespace vtq
