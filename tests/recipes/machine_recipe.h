// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>
#include <nlohmann/json_fwd.hpp>

/// Reads a recipe from a JSON file. Throws std::runtime_error, whose text names the file, when it
/// cannot be read or is not JSON.
nlohmann::json ReadRecipe(const std::filesystem::path& file);

/// Writes the files of the machine that `recipe` tells below `root`, where they stand on a machine:
/// proc/bus/pci, sys/bus/pci/devices and sys/firmware/dmi/tables. Throws std::invalid_argument,
/// with the place in the recipe and what is wrong there, for a recipe with a missing, unknown or
/// impossible entry.
///
/// A number is a JSON number, or a text with its hexadecimal digits ("8086"). "?" marks what may be
/// left out.
///
///   about        a sentence: what the machine is for
///   endless?     true for a machine whose collection does not end (read by the tests only)
///   sysfs?       false for a machine without /sys/bus/pci
///   pci?         the functions, in the order of the kernel's device list:
///     address      "BB:DD.F", or "DDDD:BB:DD.F" in a PCI domain other than 0
///     vendor, device, class ("0604"), revision?, progIf?, irq?, driver?
///     headerType?  by default 01 for a function with buses, 00 for every other
///     buses?       of a bridge: [primary, secondary, subordinate]
///     subsystem?   [vendor, device]
///     regions?     up to six of {"io" or "memory": address, "size": bytes, "flags"?: low bits of
///                  the base address register}, or null; flag 4 makes a memory region 64 bits
///                  wide, and the next one must be null then
///     rom?         a memory region
///     configSize?  64, 256 (unless given) or 4096: the bytes of the configuration file
///     patches?     each {"at": offset, "bytes": hexadecimal digits}, written over the
///     configuration listColumns? 1 to 18 (unless given): the columns of its line in the device
///     list
///   smbios?      the tables; without it the machine has no SMBIOS:
///     anchor       "_SM_" (SMBIOS 2) or "_SM3_" (SMBIOS 3)
///     version      "3.2"
///     structures   each {"handle"?: number} and one of
///       bios         BIOS Information (type 0): vendor, version, date
///       slot         System Slots (type 9): type, width, usage, length, id, characteristics [1,
///       2],
///                    structureLength; designation?, segment?, bus?, device?, function?,
///                    dataBusWidth?, peers? (each segment?, bus, device, function, width), and
///                    peerCount? to say another count than that of the peers
///       oemStrings   OEM Strings (type 11): the texts
///       raw          hexadecimal digits of a whole structure with its strings
///     An End-of-Table structure (type 127) follows by itself.
void BuildMachine(const nlohmann::json& recipe, const std::filesystem::path& root);
