// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "runtime/smbios_table.h"

namespace pciinfo {

/// The firmware's description of the machine, trimmed and printable. Fields are empty if the
/// firmware does not set them.
struct MachineIdentity {
  std::string maker;
  std::string product;
  std::string boardMaker;
  std::string boardProduct;
  std::string boardVersion;
  std::string biosMaker;
  std::string biosVersion;
  std::string biosDate;
};

/// Reads the first BIOS, system and base board structures of an SMBIOS table (DSP0134 7.1 to 7.3).
MachineIdentity ParseIdentity(const vtq::SmBiosTable& table);

/// Reads the SMBIOS table; nothing if this user may not, or if its entry point is damaged.
/// `root` is the directory to use as "/", here and below.
std::optional<vtq::SmBiosTable> ReadSmBiosTable(const std::string& root);

/// Reads it from the SMBIOS table or, if this user may not read that, from the kernel's files that
/// every user may read.
MachineIdentity ReadIdentity(const std::string& root = "");

}  // namespace pciinfo
