// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

/// A machine to emulate and the expected output of the program.
struct SystemMachine {
  std::string name;
  std::string smbiosEntryPoint;      ///< width of the table's address in bits, "32" or "64"
  std::string smbiosVersion;         ///< in the form of dmidecode's output
  std::vector<std::string> devices;  ///< QEMU options, each after its bus
  std::vector<std::string> options;  ///< more QEMU options
  std::string kernelOptions;         ///< see the script `init` for those that it takes
  nlohmann::json changes;            ///< commands for the monitor (QMP) while the machine runs
  nlohmann::json records;            ///< the firmware's slot records, see ReadSlotRecord
  nlohmann::json userNumbers;        ///< of ACPI, see MakeUserNumberTable; null: none
  nlohmann::json expected;           ///< in the form of ReadInventory; null: not compared
  nlohmann::json topology;           ///< in the form of ReadPlacements
};

/// Reads a machine from a file of machines/. Throws an exception that says what is wrong.
SystemMachine ReadMachine(const std::filesystem::path& file);
