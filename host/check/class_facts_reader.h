// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "host/check/class_facts.h"
#include "runtime/repository.h"

namespace pciinfo {

/// Reads the kernel's PCI files below the directory `root` ("" for "/") into `facts`: the list, the
/// functions, and the start of their configuration spaces.
void ReadKernelFacts(const std::string& root, ClassFacts& facts);

/// Reads the slot records of the firmware's tables below `root`.
SlotRecords ReadSlotRecords(const std::string& root);

/// Reads all facts: from `repository`, /proc and /sys. Runs lspci if there is a PCI bus.
ClassFacts ReadClassFacts(const vtq::Namespace& repository, bool isCapture);

}  // namespace pciinfo
