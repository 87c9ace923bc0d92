// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace pciinfo {

/// Returns the SHA-256 of a text as "sha256:" and 64 hexadecimal digits.
std::string Sha256(const std::string& text);

/// Returns 32 random hexadecimal digits of the system.
std::string RandomDigits();

}  // namespace pciinfo
