// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "plugin/dmi_type9.h"

/// Returns string `index` of a structure's string set, "" for index 0, "(null string)" for an empty
/// set. The set follows the formatted area, whose length is read as a signed byte. An index beyond
/// the last string continues past the set, so `record` must be in the buffer of a StructureReader,
/// where every index from 0 to 255 ends at a zero byte.
const char* FindSlotString(int index, const unsigned char* record);

/// Returns the width in bits for a data bus width code (SMBIOS 7.10.2); 0 for codes without a
/// width. "Unknown" gives 1 bit.
std::uint16_t DataBusWidthInBits(unsigned char code);

/// The status of a slot, from its current usage code (SMBIOS 7.10.3).
struct SlotStatus {
  std::uint16_t operationalStatus;  ///< value of CIM_ManagedSystemElement.OperationalStatus
  const char* description;
};
SlotStatus StatusOfUsage(std::uint8_t currentUsage);

/// Values of CIM_Slot.VccMixedVoltageSupport for the slot characteristics 1 (SMBIOS 7.10.6).
std::vector<std::uint16_t> VoltagesOf(std::uint8_t characteristics1);

/// Returns the number of tags that a slot takes: one, and one more for each of its peer groups.
int CountOfSlot(const DMIType9& slot);

/// Returns the designation followed by the tag, or only the tag if both are equal.
std::string AllInfo(const std::string& designation, const std::string& tag);
