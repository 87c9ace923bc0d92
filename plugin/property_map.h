// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>

#include "framework/cim_value.h"

/// The properties of a future instance: names, in byte order, with their values. An empty map means
/// that there is no instance.
using TPropertyMap = std::map<std::string, NQZMVTQ20::TCIMValue>;
