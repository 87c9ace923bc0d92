// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <span>

#include "topology/machine.h"

namespace topology {

/// One SMBIOS structure: its formatted area and its strings with the two zero bytes at their end.
using Structure = std::span<const unsigned char>;

/// Decodes a System Slots structure (DSP0134, 7.10). Fields that a short or old structure lacks
/// keep their defaults. Returns nothing when it is too short for a designation.
std::optional<SlotRecord> DecodeSlotRecord(Structure structure);

/// Decodes an Onboard Devices Extended Information structure (7.42).
std::optional<OnBoardRecord> DecodeOnBoardRecord(Structure structure);

/// Decodes a Baseboard structure (7.3). Returns nothing when it is too short for contained handles.
std::optional<BoardRecord> DecodeBoardRecord(Structure structure);

}  // namespace topology
