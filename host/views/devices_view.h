// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/console/output.h"
#include "host/console/terminal.h"
#include "runtime/repository.h"

namespace pciinfo {

/// Writes every PCI function of the repository, sorted by address, one per line.
void WriteDevicesTable(Output& output, const vtq::Namespace& repository, const Terminal& terminal);

/// Writes the same as JSON; docs/formats.md describes it.
void WriteDevicesJson(Output& output, const vtq::Namespace& repository);

}  // namespace pciinfo
