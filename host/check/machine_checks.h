// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/check/finding.h"
#include "host/check/machine_facts.h"

namespace pciinfo {

/// A check of the machine itself. An error means that something has failed, a warning that it
/// works worse than it could or may have failed, a note that it is worth knowing before work on the
/// machine. What is not known is no finding.
using MachineCheck = Check<MachineFacts>;

/// All checks of the machine, in the order in which findings are printed.
const std::vector<MachineCheck>& MachineChecks();

// The parts of MachineChecks.
const std::vector<MachineCheck>& AnswerChecks();
const std::vector<MachineCheck>& LinkChecks();
const std::vector<MachineCheck>& ErrorChecks();
const std::vector<MachineCheck>& DriverChecks();
const std::vector<MachineCheck>& RegionChecks();
const std::vector<MachineCheck>& SlotChecks();

/// The codes of all findings, those of the classes too.
std::vector<std::string> FindingCodes();

/// Makes the object of a finding about a function of the machine.
AffectedObject ObjectOf(const MachineFunction& function, const MachineModel& machine,
                        std::string detail);

/// Makes the object of a finding about a slot.
AffectedObject ObjectOf(const MachineSlot& slot, std::string detail);

}  // namespace pciinfo
