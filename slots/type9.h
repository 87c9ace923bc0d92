#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "plugin/dmi_type9.h"

/// String `index` of a structure's string set, "" for index 0, "(null string)" for an empty set.
/// The set begins behind the formatted area, whose length is read as a signed byte. An index beyond
/// the last string walks on: `record` must stand in a StructureReader's buffer, where every index
/// from 0 to 255 ends at a zero byte.
const char* FindSlotString(int index, const unsigned char* record);

/// Width in bits for a data bus width code (SMBIOS 7.10.2), 0 for codes without one. The codes
/// count from "Unknown", which reads as 1 bit.
std::uint16_t DataBusWidthInBits(unsigned char code);

/// What a current usage code (SMBIOS 7.10.3) says about the slot's condition.
struct SlotStatus {
  std::uint16_t operationalStatus;  ///< value of CIM_ManagedSystemElement.OperationalStatus
  const char* description;
};
SlotStatus StatusOfUsage(std::uint8_t currentUsage);

/// Values of CIM_Slot.VccMixedVoltageSupport for the slot characteristics 1 (SMBIOS 7.10.6).
std::vector<std::uint16_t> VoltagesOf(std::uint8_t characteristics1);

/// How often a slot counts: once, and once more for each of its peer groups.
int CountOfSlot(const DMIType9& slot);

/// The designation with the tag behind it, unless the designation is the tag.
std::string AllInfo(const std::string& designation, const std::string& tag);
