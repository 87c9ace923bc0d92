// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/model/pci_function.h"
#include "runtime/repository.h"

namespace pciinfo {

/// A system slot and the functions in it. The codes are SMBIOS codes, see smbios_names.h.
/// Properties that the instance does not set have no value.
struct Slot {
  std::string path;  ///< of its instance
  std::string tag;
  std::optional<std::string> designation;  ///< exactly as in the firmware
  std::optional<unsigned> type;
  std::optional<unsigned> usage;
  std::optional<unsigned> width;
  std::optional<unsigned> id;
  std::optional<bool> hotPlug;
  std::vector<PciFunction> functions;  ///< sorted by address; empty for an empty slot
};

/// All slots and their functions, from the associations of a repository.
struct SlotsModel {
  std::vector<Slot> slots;           ///< in the order of the slot records
  std::vector<PciFunction> onBoard;  ///< sorted by address
};

/// Joins the slots and functions of the repository by its associations.
SlotsModel ReadSlots(const vtq::Namespace& repository);

}  // namespace pciinfo
