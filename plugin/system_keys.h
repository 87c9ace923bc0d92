// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/cim_class.h"
#include "plugin/property_map.h"

/// Adds "SystemCreationClassName" and "SystemName", which identify the computer system of an
/// instance. The framework returns their values for the namespace of `cimClass`. If it throws
/// TVTQException, the missing values become empty texts.
void InsertSystemKeys(NQZMVTQ20::ICIMClass* cimClass, TPropertyMap* properties);
