// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/collect/plugin_files.h"
#include "host/console/output.h"
#include "runtime/plugin_manager.h"

namespace pciinfo {

/// Writes the loaded plug-ins, each with the classes that it serves, then the classes that every
/// plug-in is asked for.
void WriteClasses(Output& output, const vtq::PluginManager& manager, const PluginSet& plugins);

}  // namespace pciinfo
