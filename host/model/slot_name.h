// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "host/model/slots_model.h"

namespace pciinfo {

/// Returns the slot's designation without surrounding blanks, else its tag. Printable.
std::string SlotName(const Slot& slot);

/// Whether `name` is the slot's ID, or its designation or tag (ignoring case).
bool IsNamed(const Slot& slot, std::string_view name);

}  // namespace pciinfo
