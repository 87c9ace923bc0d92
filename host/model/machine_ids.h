// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "runtime/smbios_table.h"

namespace pciinfo {

/// What tells a machine from all others, also when it is renamed. What is not known is empty.
struct MachineIds {
  std::string systemUuid;  ///< of the firmware, lower case: "4c4c4544-0035-..."
  std::string machineId;   ///< of the operating system, 32 hexadecimal digits in lower case
};

/// Returns the UUID of the first system structure of an SMBIOS table (DSP0134 7.2.1). Empty if the
/// table has none, or one that many machines share.
std::string ParseSystemUuid(const vtq::SmBiosTable& table);

/// Reads the UUID from the SMBIOS table or, if that cannot be read, from the kernel's file, and the
/// machine ID from /etc/machine-id. `root` is the directory to use as "/".
MachineIds ReadMachineIds(const std::string& root = "");

/// Whether a text is a UUID in lower case: "4c4c4544-0035-4d10-8052-b3c04f4c3132".
bool IsUuid(const std::string& text);

/// Whether a text is a machine ID: 32 hexadecimal digits in lower case, not all of them zero.
bool IsMachineId(const std::string& text);

}  // namespace pciinfo
