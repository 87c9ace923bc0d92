// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ctime>
#include <string>

namespace pciinfo {

/// Returns a time as "2026-01-31T23:59:59Z".
std::string UtcText(std::time_t time);

/// Whether a text is a time in that form.
bool IsUtcText(const std::string& text);

}  // namespace pciinfo
