#pragma once

#include "framework/cim_class.h"
#include "plugin/property_map.h"

/// Adds "SystemCreationClassName" and "SystemName", by which an instance names the computer system
/// that it belongs to, as the framework tells them for the namespace of `cimClass`. One that the
/// framework cannot tell becomes the empty text. Framework failures (TVTQException) are swallowed.
void InsertSystemKeys(NQZMVTQ20::ICIMClass* cimClass, TPropertyMap* properties);
