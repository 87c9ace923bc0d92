// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

/// Returns the functions that `lspci -D -n` lists, as "01:00.0 8086:10d3", sorted. A domain other
/// than 0 stays before the address.
std::vector<std::string> ReadLspci(const std::string& listing);

/// Returns the slots that `dmidecode -t 9` prints, in the form of "records" in a machine file.
nlohmann::json ReadDmidecode(const std::string& listing);
