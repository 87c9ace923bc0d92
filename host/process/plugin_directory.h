// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace pciinfo {

/// The directory of installed plug-ins, relative to the directory of the installed program.
extern const char* const kPluginDirectory;

}  // namespace pciinfo
