// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "host/model/slots_model.h"

namespace pciinfo {

/// Returns a slot with its functions as JSON; docs/formats.md describes it.
nlohmann::ordered_json SlotJson(const Slot& slot);

}  // namespace pciinfo
