// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/machine/cards.h"

namespace pciinfo {

/// Returns what functions are: one or two cards, and how many more there are.
std::string CardsLabel(const FunctionList& functions, const MachineModel& machine);

/// Addresses in words, those of a device together: "03:00.0-3".
struct ShownAddresses {
  std::string text;
  bool isWhole = true;  ///< else the text ends with how many are missing
};

/// Returns addresses in words, the first ones if there are more than eight texts.
ShownAddresses ShowAddresses(const std::vector<DomainAddress>& addresses, bool hasDomains);

}  // namespace pciinfo
