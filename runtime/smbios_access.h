#pragma once

#include <string>

#include "framework/export.h"
#include "framework/status_code.h"
#include "runtime/smbios_table.h"

namespace vtq {

/// Where the kernel keeps the files `smbios_entry_point` and `DMI`.
inline constexpr const char* kSmBiosDirectory = "/sys/firmware/dmi/tables";

/// Reads both files in `directory` and checks the entry point. Tells the observer of service
/// failures, then throws TVTQException with the code that smBiosLoad lists.
SmBiosTable LoadSmBiosTable(const std::string& directory);

/// smBiosLoad for the files in `directory`, not null.
VTQ_EXPORT NQZMVTQ20::TVTQStatusCode::EVTQStatusCode SmBiosLoadFrom(const char* directory,
                                                                    void** handle) noexcept;

}  // namespace vtq
