#pragma once

#include <map>
#include <string>

#include "framework/cim_value.h"

namespace NQZMVTQ20 {

/// Qualifiers that go with an operation on a class, an instance or a namespace, by name. Plug-ins
/// pass an empty map; the operations define no qualifier that changes their effect.
using TQualifierMap = std::map<std::string, TCIMValue>;

}  // namespace NQZMVTQ20
