// SPDX-License-Identifier: Apache-2.0

// Machines with any bridges, records, kernel slots and onboard devices: which slot holds which
// function. An input is the choices of which a machine is made.
#include "fuzz/fuzz.h"
#include "tests/topology/random_machine.h"
#include "tests/topology/resolution_rules.h"
#include "topology/slot_resolver.h"

void fuzz::CheckInput(std::string_view input) {
  Pieces choices(input);
  const topology::Machine machine = topology::MakeMachineBy([&choices](unsigned end) {
    unsigned number = choices.Byte();
    if (end > 0x100) number = number << 8 | choices.Byte();
    return number % end;
  });
  const topology::BusTree tree(machine.functions);
  const std::string broken = BrokenRule(machine, topology::ResolveSlots(machine, tree));
  Require(broken.empty(), broken.c_str());
}
