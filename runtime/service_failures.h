// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "framework/export.h"
#include "framework/status_code.h"

namespace vtq {

/// Calls `observer` with the description of every failure of an operating-system service (command,
/// file, SMBIOS), just before the plug-in gets the failure. A plug-in may drop the reason; the host
/// can learn it here. Null removes the observer. Exceptions of the observer are dropped. Not
/// thread-safe.
VTQ_EXPORT void ObserveServiceFailures(
    std::function<void(const std::string& description)> observer);

/// Calls `observer` with a sentence about every service that succeeded and may not have given all:
/// a command that printed something and exited with a non-zero status. As above in all else.
VTQ_EXPORT void ObserveDoubtfulOutputs(
    std::function<void(const std::string& description)> observer);

/// For the services themselves: calls that observer.
void ReportDoubtfulOutput(std::string_view description) noexcept;

/// For the services themselves, and for a host that knows of a failure: calls the observer.
VTQ_EXPORT void ReportServiceFailure(std::string_view description) noexcept;

/// For the services themselves: calls the observer, then throws a TVTQException with that
/// description.
[[noreturn]] void FailService(
    const std::string& description,
    NQZMVTQ20::TVTQStatusCode::EVTQStatusCode code = NQZMVTQ20::TVTQStatusCode::kFailure);

/// Returns the status code for the errno of a failed open or read.
NQZMVTQ20::TVTQStatusCode::EVTQStatusCode StatusOfErrno(int error) noexcept;

}  // namespace vtq
