// SPDX-License-Identifier: Apache-2.0

// In a file of its own, because only this is compiled again when the place of the installation
// changes.
#include "host/process/plugin_directory.h"

namespace pciinfo {

const char* const kPluginDirectory = PCIINFO_PLUGIN_DIRECTORY;

}  // namespace pciinfo
