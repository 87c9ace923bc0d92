// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pci/records.h"
#include "plugin/dmi_type9.h"

/// Appends the location of a slot from its System Slots structure, and one location for each of its
/// peer groups (SMBIOS 7.10.9), which share the slot's device, function, ID and usage. Each of them
/// takes the next tag; those on bus 0 take one too, but are not appended.
void AppendSlotLocations(const DMIType9& slot, std::uint16_t* nextTag,
                         std::vector<SlotLocation>* locations);

/// Whether an OEM string (SMBIOS 7.12) describes a slot.
bool DescribesSlot(const std::string& oemString);

/// Appends the location of a slot from an OEM string such as "$T9 SID:0x0102 SegGrp:0x0000 B:0x3a
/// D:0x00 F:0x00", unless it is on bus 0. A string that describes a slot takes the next tag in
/// either case; any other string has no effect.
void AppendSlotLocation(const std::string& oemString, std::uint16_t* nextTag,
                        std::vector<SlotLocation>* locations);

/// Returns the first string of a structure's string set, which begins at `structure` + length. At
/// least one zero byte must follow the structure, as in the buffer of a StructureReader.
std::string FirstString(const unsigned char* structure);
