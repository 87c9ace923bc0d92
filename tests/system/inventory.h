// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

/// Returns the program's inventory in the form of "expected" in a machine file: "slots" with the
/// functions in each, "onBoard" with those on the board, a function as "01:00.0 8086:10d3 device".
/// Functions are sorted. `instances` is the output of `pciinfo instances --format json`.
nlohmann::json ReadInventory(const nlohmann::json& instances);

/// Returns the slot numbers of functions, as "01:00.0 1", sorted.
std::vector<std::string> ReadSlotNumbers(const nlohmann::json& instances);

/// Returns the functions as "01:00.0 8086:10d3", sorted.
std::vector<std::string> ReadFunctions(const nlohmann::json& instances);
