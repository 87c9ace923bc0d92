// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json.hpp>
#include <string>

/// Returns the body of an ACPI table (SSDT) that adds devices with slot user numbers to bus 0, as
/// firmware does for ports to slots. `numbers` is {"1c.4": 7}: number by device and function.
std::string MakeUserNumberTable(const nlohmann::json& numbers);
