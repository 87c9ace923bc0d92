// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "host/report/parts.h"

namespace pciinfo {

/// Returns the name of a part with the number of the parts that it stands for: "8 x Intel ...".
std::string CountedName(const Part& part);

/// Says in one line what a part is: slot, card, address, link and port.
std::string ItemTitle(const Part& part);

}  // namespace pciinfo
