// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <set>
#include <string>

namespace pciinfo {

// Properties that no class declares; `diff` derives them from several instances.
inline constexpr const char* kCardProperty = "Card";
inline constexpr const char* kSlotProperty = "Slot";
inline constexpr const char* kFunctionsProperty = "Functions";
inline constexpr const char* kLinkWidthProperty = "LinkWidth";
inline constexpr const char* kLinkSpeedProperty = "LinkSpeed";

/// The classes that a comparison deals with.
struct ComparedClasses {
  std::set<std::string> compared;    ///< both inventories cover them
  std::set<std::string> comparable;  ///< both inventories cover them, or neither does

  bool Has(const std::string& name) const { return compared.count(name) != 0; }
};

/// The slots of one inventory, by object path.
struct SlotNames {
  std::map<std::string, std::string> names;   ///< equal for slots that were paired
  std::map<std::string, std::string> labels;  ///< for people
};

}  // namespace pciinfo
