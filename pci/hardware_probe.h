// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>
#include <vector>

#include "framework/cim_value.h"
#include "plugin/property_map.h"

/// Slot numbers of functions directly below a bridge that has one, by device key
/// ("PCIBus2device0function0"). The hardware-probe tool finds these functions.
using THwinfoSlotMap = std::map<std::string, NQZMVTQ20::TCIMValue>;

/// Whether a bridge with these properties has a slot number other than 0; only below such a bridge
/// a probe is useful.
bool HasSlotNumber(const TPropertyMap& properties);

/// Returns the shell command that writes the probe's lines of the functions directly below the
/// bridge at `bridgeAddress` ("0000:00:1c.0") to "infopci.txt" in the current directory.
std::string ProbeCommand(const std::string& bridgeAddress);

/// Returns the address ("02:00.0") at the end of the last line of a probe's output, which is the
/// path of a function; a line end may follow it.
std::string LastProbedAddress(std::string output);

/// Probes below one bridge and adds the last function found, with the bridge's slot number. A probe
/// that finds nothing, or whose output cannot be read, adds nothing.
void ProbeBelowBridge(const std::string& bridgeAddress, const TPropertyMap& bridge,
                      THwinfoSlotMap* slots);

/// Sets the slot number of each device that has none and whose location is in `slots`.
void FillInSlotNumbers(const THwinfoSlotMap& slots, std::vector<TPropertyMap>* devices);
