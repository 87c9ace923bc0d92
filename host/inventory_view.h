#pragma once

#include "host/output.h"
#include "runtime/repository.h"

namespace pciinfo {

/// Writes a table of all PCI functions in the repository, sorted by address.
void WriteInventory(Output& output, const vtq::Namespace& repository);

}  // namespace pciinfo
