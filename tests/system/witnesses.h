#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

/// The functions that `lspci -D -n` lists, as "01:00.0 8086:10d3", sorted. A domain other than 0
/// stays in front of the address.
std::vector<std::string> ReadLspci(const std::string& listing);

/// The slots that `dmidecode -t 9` prints, told as in "records" of a machine file.
nlohmann::json ReadDmidecode(const std::string& listing);
