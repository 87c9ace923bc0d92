// SPDX-License-Identifier: Apache-2.0

// A library that finds the plug-in manager and registers nothing.

#include "framework/plugin_manager_namespace.h"
#include "framework/root_object.h"

namespace {

const bool hasManager = NQZMVTQ20::TRootObject::GetPluginManager() != nullptr;

}  // namespace
