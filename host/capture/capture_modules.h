// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <set>
#include <string>
#include <string_view>

#include "host/capture/capture_machine.h"

namespace pciinfo {

/// Returns the lines of a kernel's modules.alias ("alias PATTERN MODULE") whose pattern fits one of
/// the aliases of functions ("pci:v00008086d..."), in their order. The whole file has megabytes.
std::string FittingAliases(std::string_view text, const std::set<std::string>& functions);

/// Adds those lines for the functions of this machine, if its kernel has such a file.
void CaptureModules(CaptureReceiver& receiver);

}  // namespace pciinfo
