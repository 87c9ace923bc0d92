#pragma once

#include <string>
#include <vector>

#include "runtime/class_schema.h"

namespace pciinfo {

// Names of the codes in system slot structures from the SMBIOS standard (DSP0134), or the number if
// the standard has no name.

std::string ConnectorTypeText(unsigned code);  ///< slot type, 7.10.1
std::string SlotWidthText(unsigned code);      ///< slot data bus width, 7.10.2
std::string SlotUsageText(unsigned code);      ///< current usage, 7.10.3

// All codes that the standard names, with their names.

std::vector<vtq::NamedValue> ConnectorTypes();  ///< slot types, 7.10.1
std::vector<vtq::NamedValue> SlotWidths();      ///< slot data bus widths, 7.10.2
std::vector<vtq::NamedValue> SlotUsages();      ///< current usages, 7.10.3
std::vector<vtq::NamedValue> SlotLengths();     ///< slot lengths, 7.10.4

}  // namespace pciinfo
