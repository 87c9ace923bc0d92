// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/check/machine_facts.h"

/// The places of the functions and slots of MakeHealthyMachine().
inline constexpr std::size_t kNetworkPort = 0;   ///< the root port 00:01.0
inline constexpr std::size_t kGraphicsPort = 1;  ///< the root port 00:02.0
inline constexpr std::size_t kSmbus = 2;         ///< on the board, without a driver
inline constexpr std::size_t kNetwork = 3;       ///< a network card in SLOT1
inline constexpr std::size_t kGraphics = 4;      ///< a graphics card in SLOT2, with an idle link
inline constexpr std::size_t kSlot1 = 0;
inline constexpr std::size_t kSlot2 = 1;
inline constexpr std::size_t kEmptySlot = 2;  ///< SLOT3

/// Facts of a machine without findings. Each test changes a part.
pciinfo::MachineFacts MakeHealthyMachine();

/// Returns "object: detail" for each object in the findings of the check of the machine with that
/// code; "no such check" for other codes.
std::vector<std::string> FoundBy(const std::string& code, const pciinfo::MachineFacts& facts);

/// Returns the codes of all findings.
std::vector<std::string> CodesOf(const pciinfo::MachineFacts& facts);
