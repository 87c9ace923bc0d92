// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/machine/cards.h"

namespace pciinfo {

/// Returns what functions are: one or two cards, and how many more there are.
std::string CardsLabel(const FunctionList& functions, const MachineModel& machine);

/// Returns addresses as texts, those of a device together: "03:00.0-3". Of more than eight only the
/// first are listed, followed by how many are missing.
std::string AddressesText(const std::vector<DomainAddress>& addresses, bool hasDomains);

}  // namespace pciinfo
