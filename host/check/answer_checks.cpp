// SPDX-License-Identifier: Apache-2.0

// The check of functions that have failed while the kernel still lists them.

#include "host/check/machine_checks.h"

namespace pciinfo {
namespace {

/// A read that nothing answers gives a one for every bit. No function has such a class and header.
bool IsSilent(const MachineFunction& function) {
  return function.baseClass == 0xFFU && function.subclass == 0xFFU && function.revision == 0xFFU &&
         function.headerType == 0x7FU;
}

std::vector<AffectedObject> SilentFunctions(const MachineFacts& facts) {
  std::vector<AffectedObject> objects;
  for (std::size_t i = 0; i < facts.machine.functions.size(); ++i) {
    const MachineFunction& function = facts.machine.functions[i];
    // A function without power cannot answer, and has been turned off on purpose.
    if (!IsSilent(function) || facts.functions[i].powerState == "D3cold") continue;
    objects.push_back(ObjectOf(function, facts.machine, ""));
  }
  return objects;
}

const std::vector<MachineCheck> kAnswerChecks = {
    {"function-silent", Severity::kError,
     "The kernel lists these functions, but they no longer answer.",
     "Read the kernel's log. Seat the card again or replace it; a restart may bring it back for a "
     "while.",
     &SilentFunctions},
};

}  // namespace

const std::vector<MachineCheck>& AnswerChecks() { return kAnswerChecks; }

}  // namespace pciinfo
