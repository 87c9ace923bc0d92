#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/model/pci_function.h"
#include "runtime/repository.h"

namespace pciinfo {

/// A system slot and what sits in it. The codes are SMBIOS codes, see smbios_names.h; what the
/// instance does not set has no value.
struct Slot {
  std::string path;  ///< of its instance
  std::string tag;
  std::optional<std::string> designation;  ///< as the firmware gives it
  std::optional<unsigned> type;
  std::optional<unsigned> usage;
  std::optional<unsigned> width;
  std::optional<unsigned> id;
  std::optional<bool> hotPlug;
  std::vector<PciFunction> functions;  ///< sorted by address; empty for an empty slot
};

/// What the slot associations of a repository say.
struct SlotsModel {
  std::vector<Slot> slots;           ///< in the order of the slot records
  std::vector<PciFunction> onBoard;  ///< sorted by address
};

/// Joins the slots and functions of the repository by its associations.
SlotsModel ReadSlots(const vtq::Namespace& repository);

}  // namespace pciinfo
