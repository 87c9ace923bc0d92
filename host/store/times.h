// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <string>

namespace pciinfo {

/// Returns the time of a record, "2024-05-06T07:08:09Z", as the database takes it,
/// "2024-05-06 07:08:09"; `now` for a record without a time. Throws BadRecord for other texts, and
/// for times more than a day after `now`.
std::string TimeOfRecord(const std::string& collected, std::chrono::sys_seconds now);

/// Returns a time that the database answered in the form in which it takes them.
std::string TimeOfDatabase(const std::string& time);

}  // namespace pciinfo
