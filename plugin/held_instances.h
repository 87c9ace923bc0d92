// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <vector>

#include "framework/cim_instance.h"
#include "framework/cim_namespace.h"

/// Instances that the framework holds; the vector keeps them alive.
using HeldInstances = std::vector<std::shared_ptr<NQZMVTQ20::ICIMInstance>>;

/// Appends all instances of a class, in enumeration order. Throws TVTQException when the namespace
/// has no such class or cannot enumerate it.
void AppendHeldInstances(NQZMVTQ20::ICIMNamespace& nameSpace, const char* className,
                         HeldInstances* instances);
