// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "framework/export.h"
#include "framework/status_code.h"
#include "runtime/smbios_table.h"

namespace vtq {

/// The directory with the kernel's files `smbios_entry_point` and `DMI`.
inline constexpr const char* kSmBiosDirectory = "/sys/firmware/dmi/tables";

/// Reads both files in `directory` and checks the entry point. On failure, calls the observer of
/// service failures and throws TVTQException with a status code that smBiosLoad lists.
SmBiosTable LoadSmBiosTable(const std::string& directory);

/// smBiosLoad for the files in `directory`, which must not be null.
VTQ_EXPORT NQZMVTQ20::TVTQStatusCode::EVTQStatusCode SmBiosLoadFrom(const char* directory,
                                                                    void** handle) noexcept;

}  // namespace vtq
