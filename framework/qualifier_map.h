// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>

#include "framework/cim_value.h"

namespace NQZMVTQ20 {

/// Qualifiers of an operation on a class, an instance or a namespace, by name. Plug-ins pass an
/// empty map, because no operation defines a qualifier.
using TQualifierMap = std::map<std::string, TCIMValue>;

}  // namespace NQZMVTQ20
