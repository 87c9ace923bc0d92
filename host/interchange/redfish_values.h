// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "host/machine/machine_model.h"

namespace pciinfo {

// Words of DSP0268. All are empty for what the standard has no word for.

/// PCIeTypes of a speed: "Gen3" for "8.0 GT/s".
std::string PcieTypeOfSpeed(const std::string& speed);

/// PCIeTypes of a slot: what its type names, else what its port is capable of.
std::string PcieTypeOf(const MachineSlot& slot);

/// SlotTypes of a slot.
std::string SlotTypeOf(const MachineSlot& slot);

/// Lanes of a slot: those of its record, else those of its port.
std::optional<unsigned> LanesOf(const MachineSlot& slot);

/// DeviceClass of a function.
std::string DeviceClassOf(const MachineFunction& function);

/// Class code with subclass and programming interface: "0x020000".
std::string ClassCodeOf(const MachineFunction& function);

/// A number of 8 or 16 bits: "0x8086".
std::string HexByte(const std::optional<unsigned>& number);
std::string HexWord(const std::optional<unsigned>& number);

}  // namespace pciinfo
