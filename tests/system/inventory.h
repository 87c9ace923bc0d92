#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

/// The program's answer, told as in "expected" of a machine file: "slots" with the functions that
/// sit in each, "onBoard" with those that are on the board, a function as "01:00.0 8086:10d3
/// device". Functions are sorted. `instances` is what `pciinfo instances --format json` prints.
nlohmann::json ReadInventory(const nlohmann::json& instances);

/// The slot number of every function that has one, as "01:00.0 1", sorted.
std::vector<std::string> ReadSlotNumbers(const nlohmann::json& instances);

/// The functions as "01:00.0 8086:10d3", sorted.
std::vector<std::string> ReadFunctions(const nlohmann::json& instances);
