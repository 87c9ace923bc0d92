#pragma once

#include "host/console/output.h"
#include "runtime/plugin_manager.h"
#include "runtime/repository.h"

namespace pciinfo {

/// Writes who the loaded plug-ins are and which classes can be asked for.
void WriteClasses(Output& output, const vtq::PluginManager& manager,
                  const vtq::Namespace& repository);

}  // namespace pciinfo
