// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace pciinfo {

/// What tells a machine from others. What is not known is empty.
struct MachineNames {
  std::string name;
  std::string systemUuid;
  std::string machineId;
};

/// A row of the table `machine`.
struct KnownMachine {
  std::string id;
  MachineNames names;
  std::string lastSeen;
  std::string firstSeen = {};
};

/// Returns the names without UUIDs that boards have whose maker has set none, and without machine
/// IDs that are none. Letters are made lower case.
MachineNames OnlyMeaningful(MachineNames names);

/// Returns which of the known machines these names mean; null for a machine that is not known.
///
/// A different UUID means another machine. With the same UUID a different machine ID means that the
/// system was installed again, but if the name differs as well, that two machines share a UUID.
/// The name alone decides where nothing else is known on both sides. Of several machines that are
/// possible, the one with the most in common is meant, then the one that was seen last.
const KnownMachine* ChooseMachine(const MachineNames& told, const std::vector<KnownMachine>& known);

}  // namespace pciinfo
