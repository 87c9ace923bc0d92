// SPDX-License-Identifier: Apache-2.0

// This is a file of its own, so that another place of the installation recompiles nothing else.
#include "host/process/plugin_directory.h"

namespace pciinfo {

const char* const kPluginDirectory = PCIINFO_PLUGIN_DIRECTORY;

}  // namespace pciinfo
