// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace pciinfo {

// Cards have serial numbers too: in the Device Serial Number capability of their configuration
// space and in their vital product data, which lspci prints.

/// Clears the Device Serial Number (PCI Express Base 7.9.3) in a configuration space of any length.
void RedactConfigSpace(std::string& bytes);

/// Clears the Device Serial Numbers in the output of "lspci -xxxx".
void RedactHexListing(std::string& listing);

/// In the output of "lspci -vvv", replaces by 'X' the characters of device serial numbers and of
/// the fields of vital product data that can identify a card.
void RedactVerboseListing(std::string& listing);

}  // namespace pciinfo
