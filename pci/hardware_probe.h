#pragma once

#include <map>
#include <string>
#include <vector>

#include "framework/cim_value.h"
#include "plugin/property_map.h"

/// Slot numbers that the hardware-probe tool adds to functions directly below a bridge that has
/// one, by device key ("PCIBus2device0function0").
using THwinfoSlotMap = std::map<std::string, NQZMVTQ20::TCIMValue>;

/// Whether a bridge with these properties is worth a probe: it has a slot number other than 0.
bool HasSlotNumber(const TPropertyMap& properties);

/// The shell command that writes the probe lines of functions right below the bridge at
/// `bridgeAddress` ("0000:00:1c.0") to "infopci.txt" in the current directory.
std::string ProbeCommand(const std::string& bridgeAddress);

/// The address ("02:00.0") at the end of the last line of a probe's output, which names a function
/// by its path; a line end may follow.
std::string LastProbedAddress(std::string output);

/// Probes below one bridge and notes the function found last under the bridge's slot number. A
/// probe that finds nothing, or whose output cannot be read, adds nothing.
void ProbeBelowBridge(const std::string& bridgeAddress, const TPropertyMap& bridge,
                      THwinfoSlotMap* slots);

/// Gives each device that has no slot number, and whose location is among `slots`, that number.
void FillInSlotNumbers(const THwinfoSlotMap& slots, std::vector<TPropertyMap>* devices);
