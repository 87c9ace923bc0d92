// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/record/machine_line.h"
#include "tests/host/fixed_repository.h"

/// The machine of MakeTopologyRepository() with a name, UUID, ID and time, and without details.
inline pciinfo::CollectedMachine MakeCollectedMachine() {
  pciinfo::CollectedMachine machine;
  machine.stamp = {"box",
                   {"4c4c4544-0035-4d10-8052-b3c04f4c3132", "0123456789abcdef0123456789abcdef"},
                   "2024-05-06T07:08:09Z"};
  machine.identity.maker = "Dell Inc.";
  machine.identity.product = "Precision 5820";
  machine.identity.biosVersion = "2.1";
  machine.facts.machine = pciinfo::ReadMachine(*MakeTopologyRepository());
  machine.facts.functions.resize(machine.facts.machine.functions.size());
  return machine;
}
