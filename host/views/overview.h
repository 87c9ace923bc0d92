// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/console/output.h"
#include "host/console/terminal.h"
#include "host/model/machine_identity.h"
#include "host/model/slots_model.h"

namespace pciinfo {

/// The data of the overview.
struct Overview {
  MachineIdentity machine;
  std::string systemName;
  SlotsModel slots;
  std::vector<PciFunction> functions;  ///< all of them, sorted by address
  std::vector<std::string> notRead;    ///< what could not be read and why, one sentence each
};

/// Combines the repository with the firmware's description of the machine.
Overview MakeOverview(const vtq::Namespace& repository, MachineIdentity machine,
                      std::vector<std::string> notRead);

/// Writes the machine, its slots with their cards, the other functions, and what could not be read.
/// Bridges and chipset functions outside slots are only counted.
void WriteOverview(Output& output, const Overview& overview, const Terminal& terminal);

}  // namespace pciinfo
