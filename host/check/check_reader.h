#pragma once

#include <string>

#include "host/check/check_facts.h"
#include "runtime/repository.h"

namespace pciinfo {

/// Reads what the kernel tells of PCI below `root` ("" for this machine, or the one of --root) into
/// `facts`: the list, the functions, the starts of their configurations.
void ReadKernelFacts(const std::string& root, CheckFacts& facts);

/// The slot records of the firmware's tables below `root`.
SlotRecords ReadSlotRecords(const std::string& root);

/// All facts: what `repository` publishes, and what stands in /proc and /sys. Runs lspci where
/// there is a PCI bus.
CheckFacts ReadCheckFacts(const vtq::Namespace& repository, bool isCapture);

}  // namespace pciinfo
