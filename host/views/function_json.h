// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "host/model/pci_function.h"

namespace pciinfo {

/// Returns a function as JSON; docs/formats.md describes it.
nlohmann::ordered_json FunctionJson(const PciFunction& function);

}  // namespace pciinfo
