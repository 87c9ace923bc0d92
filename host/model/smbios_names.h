// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

namespace pciinfo {

// Names of the codes in system slot structures from the SMBIOS standard (DSP0134), or the number if
// the standard has no name.

std::string ConnectorTypeText(unsigned code);  ///< slot type, 7.10.1
std::string SlotWidthText(unsigned code);      ///< slot data bus width, 7.10.2
/// The number of lanes of a slot data bus width; nothing for other widths.
std::optional<unsigned> LanesOfWidth(unsigned code);
std::string SlotUsageText(unsigned code);   ///< current usage, 7.10.3
std::string SlotLengthText(unsigned code);  ///< slot length, 7.10.4

}  // namespace pciinfo
