// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace pciinfo {

// CLI11 calls these with the value of an option. They return what is wrong with it; an empty text
// if it is right.

/// For --memory-limit.
std::string IsNoLimitOrEnough(const std::string& text);

/// For --timeout.
std::string IsTime(const std::string& text);

/// For --ignore of `check`.
std::string IsFindingCode(const std::string& text);

}  // namespace pciinfo
