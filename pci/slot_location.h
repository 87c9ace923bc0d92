#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pci/records.h"
#include "plugin/dmi_type9.h"

/// Appends the place of a slot from its System Slots structure, and then one place for each of its
/// peer groups (SMBIOS 7.10.9), which share the slot's own device, function, ID and usage. Each of
/// them takes the next tag, also the ones that are on bus 0 and hence not appended.
void AppendSlotLocations(const DMIType9& slot, std::uint16_t* nextTag,
                         std::vector<SlotLocation>* locations);

/// Whether an OEM string (SMBIOS 7.12) describes a slot.
bool DescribesSlot(const std::string& oemString);

/// Appends the place of a slot from an OEM string such as
/// "$T9 SID:0x0102 SegGrp:0x0000 B:0x3a D:0x00 F:0x00", unless it is on bus 0. A string that
/// describes a slot takes the next tag either way, any other string does nothing.
void AppendSlotLocation(const std::string& oemString, std::uint16_t* nextTag,
                        std::vector<SlotLocation>* locations);

/// The first string of a structure's string set, which begins at `structure` + length. The
/// structure must be followed by at least one zero byte, as it is in a StructureReader's buffer.
std::string FirstString(const unsigned char* structure);
