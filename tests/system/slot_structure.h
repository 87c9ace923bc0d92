#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <vector>

/// A slot record of a machine file as a System Slots structure (DSP0134 7.10), string set included.
/// `record` has "designation", "id", "usage" ("In Use" or "Available") and "hotPlug". With an
/// address "at" ("0000:01:00.0": the place of the card, not of the port that leads to it) the
/// structure has the length of SMBIOS 2.6; with a list of addresses "peers", be it empty, that of
/// SMBIOS 3.2; without either, that of SMBIOS 2.0. Throws an exception that says what is wrong.
std::vector<unsigned char> MakeSlotStructure(const nlohmann::json& record, std::uint16_t handle);
