// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <vector>

/// Converts a slot record of a machine file to a System Slots structure (DSP0134 7.10) with its
/// strings. `record` has "designation", "id", "usage" ("In Use" or "Available") and "hotPlug". With
/// an address "at" ("0000:01:00.0": that of the card, not of the port above it) the structure has
/// the length of SMBIOS 2.6; with a list of addresses "peers", even an empty one, that of SMBIOS
/// 3.2; without both, that of SMBIOS 2.0. Throws an exception that says what is wrong.
std::vector<unsigned char> MakeSlotStructure(const nlohmann::json& record, std::uint16_t handle);
