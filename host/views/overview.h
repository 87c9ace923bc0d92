#pragma once

#include <string>
#include <vector>

#include "host/console/output.h"
#include "host/console/terminal.h"
#include "host/model/machine_identity.h"
#include "host/model/slots_model.h"

namespace pciinfo {

/// What the overview shows.
struct Overview {
  MachineIdentity machine;
  std::string systemName;
  SlotsModel slots;
  std::vector<PciFunction> functions;  ///< all of them, sorted by address
  std::vector<std::string> notRead;    ///< what could not be read and why, a sentence each
};

/// Joins what a repository and the machine's firmware say.
Overview MakeOverview(const vtq::Namespace& repository, MachineIdentity machine,
                      std::vector<std::string> notRead);

/// Writes the machine, its slots with their cards, the other functions, of which only those that
/// people look for are named, and what could not be read.
void WriteOverview(Output& output, const Overview& overview, const Terminal& terminal);

}  // namespace pciinfo
