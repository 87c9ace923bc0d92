// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <string>

namespace pciinfo {

/// Returns the time in UTC, as databases have it ("2024-05-06 07:08:09"), that a text means: that
/// long before `now` ("90m", "12h", "7d", "2w"), the beginning of a day in UTC ("2024-05-06"), or a
/// time in UTC ("2024-05-06T07:08:09Z", or in the form of the result). Throws UsageError, which
/// lists these forms, for other texts.
std::string SinceTime(const std::string& text, std::chrono::sys_seconds now);

}  // namespace pciinfo
