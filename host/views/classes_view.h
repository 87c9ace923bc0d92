#pragma once

#include "host/console/output.h"
#include "runtime/plugin_manager.h"
#include "runtime/repository.h"

namespace pciinfo {

/// Writes the loaded plug-ins and the classes that can be queried.
void WriteClasses(Output& output, const vtq::PluginManager& manager,
                  const vtq::Namespace& repository);

}  // namespace pciinfo
