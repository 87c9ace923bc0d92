#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

/// A machine to emulate, and what the program has to say about it.
struct SystemMachine {
  std::string name;
  std::string smbiosEntryPoint;      ///< width of the table's address in bits, "32" or "64"
  std::string smbiosVersion;         ///< as dmidecode prints it
  std::vector<std::string> devices;  ///< in QEMU's words, each behind its bus
  nlohmann::json records;            ///< the firmware's slot records, see ReadSlotRecord
  nlohmann::json expected;           ///< in the form of ReadInventory
};

/// Reads a machine from a file of machines/. Throws an exception that says what is wrong with it.
SystemMachine ReadMachine(const std::filesystem::path& file);
