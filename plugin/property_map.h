#pragma once

#include <map>
#include <string>

#include "framework/cim_value.h"

/// What one instance will hold: property names, in byte order, with their values. An empty map
/// means that there is nothing to report.
using TPropertyMap = std::map<std::string, NQZMVTQ20::TCIMValue>;
