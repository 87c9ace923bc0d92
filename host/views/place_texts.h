// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/machine/cards.h"
#include "host/machine/machine_model.h"

namespace pciinfo {

/// What is known of a slot in words: "in use", "empty" or "unknown".
std::string StateText(const MachineSlot& slot);

/// Returns the slot's name, "(port 00:1c.4)" for a slot that nobody names.
std::string NameOf(const MachineSlot& slot, const MachineModel& machine);

/// Where a function is, in a word: the name of its slot, "A or B" for a shared port, "on board"
/// or "unknown".
std::string PlaceText(const MachineFunction& function, const MachineModel& machine);

/// Says why the cards of a slot are not listed with it; empty for slots without functions that are
/// known to be empty.
std::string InsteadOfCards(const MachineSlot& slot, const MachineModel& machine);

/// Returns an address of the model's texts as the views show it.
std::string ShortAddress(const std::string& address, const MachineModel& machine);

/// Returns "A, B, C: REASON" for each reason, in the order of the first name that has it.
std::vector<std::string> GroupedByReason(
    const std::vector<std::pair<std::string, std::string>>& namesAndReasons);

/// Says in one paragraph each what leads nowhere, and what contradicts itself.
std::vector<std::string> Unmatched(const MachineModel& machine);
std::vector<std::string> Contradictions(const MachineModel& machine);

/// "SLOTS share the port PORT, and one of them holds each of:"
std::string SharedTitle(const SharedPort& shared, const MachineModel& machine);

/// "3 slots", "1 slot".
std::string Count(std::size_t count, const char* one, const char* many);

}  // namespace pciinfo
