#pragma once

#include <string>

namespace pciinfo {

// Cards name themselves too: by the Device Serial Number capability in their configuration space,
// and by what their vital product data holds, which lspci prints.

/// Clears the Device Serial Number (PCI Express Base 7.9.3) in a configuration space, which may be
/// of any length.
void RedactConfigSpace(std::string& bytes);

/// The same in the output of "lspci -xxxx".
void RedactHexListing(std::string& listing);

/// Writes 'X' for the letters and digits of device serial numbers, and of those fields of the vital
/// product data that can name a part, in the output of "lspci -vvv".
void RedactVerboseListing(std::string& listing);

}  // namespace pciinfo
