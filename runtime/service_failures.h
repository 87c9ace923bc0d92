#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "framework/export.h"
#include "framework/status_code.h"

namespace vtq {

/// Tells `observer` the description of every operating-system service that fails from now on
/// (command, file, SMBIOS), right before the failure reaches the plug-in. A plug-in may swallow the
/// reason; a host that has to explain a missing answer finds it here. Null ends it. What the
/// observer throws is dropped. Not thread-safe.
VTQ_EXPORT void ObserveServiceFailures(
    std::function<void(const std::string& description)> observer);

/// For the services themselves: tells the observer.
void ReportServiceFailure(std::string_view description) noexcept;

/// For the services themselves: tells the observer, then throws a TVTQException of that
/// description.
[[noreturn]] void FailService(
    const std::string& description,
    NQZMVTQ20::TVTQStatusCode::EVTQStatusCode code = NQZMVTQ20::TVTQStatusCode::kFailure);

/// The status code for an `errno` of a file that could not be opened or read.
NQZMVTQ20::TVTQStatusCode::EVTQStatusCode StatusOfErrno(int error) noexcept;

}  // namespace vtq
