// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "bench/fleet/machine_state.h"
#include "host/check/machine_facts.h"

namespace bench {

/// A function with what is known of it.
struct FleetFunction {
  pciinfo::MachineFunction function;
  pciinfo::FunctionFacts facts;
};

/// Where a card sits.
struct CardPlace {
  std::size_t machine = 0;  ///< the number of the machine
  std::size_t slot = 0;     ///< the place of the slot in the machine
  pciinfo::DomainAddress port;
  unsigned bus = 0;         ///< behind the port
  unsigned lanes = 0;       ///< of the slot
  unsigned generation = 0;  ///< of PCI Express, of the machine
};

/// Returns the functions of a card in a slot, with interfaces, drives, serial numbers and firmware
/// as its model has them.
std::vector<FleetFunction> FunctionsOfCard(const InstalledCard& card, const CardPlace& place);

/// Returns a speed as the kernel writes it: "8.0 GT/s".
std::string SpeedOf(unsigned generation);

}  // namespace bench
