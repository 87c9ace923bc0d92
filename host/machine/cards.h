// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/machine/machine_model.h"

namespace pciinfo {

using FunctionList = std::vector<const MachineFunction*>;

/// Returns an address as the views show it: with its domain where the machine has several.
std::string AddressText(const DomainAddress& address, bool hasDomains);

/// A line about one card, or about several equal ones.
struct Card {
  std::vector<std::string> addresses;  ///< one text for each device: "01:00.0-3"
  std::string text;                    ///< "2 x Intel I350 Gigabit Network Connection"
  FunctionList functions;              ///< of all these devices, virtual ones included
};

/// Folds functions into cards: the functions of a device into one, equal devices into one line,
/// virtual functions into their physical function. Bridges are left out where there are other
/// functions. The functions must be sorted by address.
std::vector<Card> CardsOf(const FunctionList& functions, bool hasDomains);

/// Whether a function is a bridge or part of the chip set, which lists of cards leave out.
bool IsBridgeOrChipset(const MachineFunction& function);

/// Returns a card's addresses, one for each line. Of more than eight only the first are listed, and
/// the last text says how many are missing.
std::vector<std::string> AddressLines(const Card& card);

}  // namespace pciinfo
