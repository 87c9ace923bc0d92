#pragma once

#include <string>

namespace pciinfo {

// The words of the SMBIOS standard (DSP0134) for codes of its system slot structure; for a code
// that the standard does not name, the number.

std::string ConnectorTypeText(unsigned code);  ///< slot type, 7.10.1
std::string SlotWidthText(unsigned code);      ///< slot data bus width, 7.10.2
std::string SlotUsageText(unsigned code);      ///< current usage, 7.10.3

}  // namespace pciinfo
