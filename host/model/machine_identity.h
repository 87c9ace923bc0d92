#pragma once

#include <string>

#include "runtime/smbios_table.h"

namespace pciinfo {

/// What the firmware says about the machine as a whole, trimmed and printable; empty where it says
/// nothing.
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

/// The same from the firmware's table, or, where this user may not read that, from what the kernel
/// shows of it to everybody. `root` is the folder that stands for "/".
MachineIdentity ReadIdentity(const std::string& root = "");

}  // namespace pciinfo
