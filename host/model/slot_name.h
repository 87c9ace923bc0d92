#pragma once

#include <string>
#include <string_view>

#include "host/model/slots_model.h"

namespace pciinfo {

/// What people call a slot: its designation without blanks around it, else its tag. Printable.
std::string SlotName(const Slot& slot);

/// Whether `name` names the slot: a number its slot ID, everything else its designation or its tag,
/// large and small letters alike.
bool IsNamed(const Slot& slot, std::string_view name);

}  // namespace pciinfo
