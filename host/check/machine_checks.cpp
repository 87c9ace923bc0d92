// SPDX-License-Identifier: Apache-2.0
#include "host/check/machine_checks.h"

#include "host/check/class_checks.h"
#include "host/machine/cards.h"
#include "host/machine/names.h"

namespace pciinfo {

const std::vector<MachineCheck>& MachineChecks() {
  static const std::vector<MachineCheck> checks = [] {
    std::vector<MachineCheck> all;
    for (const auto* part : {&AnswerChecks(), &SlotChecks(), &ErrorChecks(), &LinkChecks(),
                             &DriverChecks(), &RegionChecks()}) {
      all.insert(all.end(), part->begin(), part->end());
    }
    return all;
  }();
  return checks;
}

std::vector<std::string> FindingCodes() {
  std::vector<std::string> codes;
  codes.reserve(MachineChecks().size() + ClassChecks().size());
  for (const MachineCheck& check : MachineChecks()) codes.emplace_back(check.code);
  for (const ClassCheck& check : ClassChecks()) codes.emplace_back(check.code);
  return codes;
}

AffectedObject ObjectOf(const MachineFunction& function, const MachineModel& machine,
                        std::string detail) {
  if (function.slot && machine.slots[*function.slot].IsNamed()) {
    if (!detail.empty()) detail += ", ";
    detail += "in " + machine.slots[*function.slot].name;
  }
  return {AddressText(function.address, machine.HasDomains()),
          "",
          std::move(detail),
          "function",
          FormatAddress(function.address),
          ModelText(function)};
}

AffectedObject ObjectOf(const MachineSlot& slot, std::string detail) {
  return {slot.name, "", std::move(detail), "slot"};
}

}  // namespace pciinfo
