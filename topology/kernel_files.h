// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "topology/machine.h"

namespace topology {

/// Where the kernel shows PCI functions: a directory for each, and files of configuration space.
inline constexpr const char* kSysDevices = "/sys/bus/pci/devices";
inline constexpr const char* kProcPci = "/proc/bus/pci";

// Reads the kernel's files about PCI. A file that is missing or cannot be read leaves its fact
// unknown.

/// The functions in /sys/bus/pci/devices, or where that is missing those of /proc/bus/pci, sorted
/// by address. /proc tells less: no drivers, no NUMA nodes, no domains. Calls `meanwhile` on
/// the calling thread while another thread reads.
std::vector<Function> ReadFunctions(const std::function<void()>& meanwhile = [] {});

/// Whether the functions come from /proc, because sysfs has no PCI devices.
bool IsWithoutSysfs();

/// The slots in /sys/bus/pci/slots.
std::vector<KernelSlot> ReadKernelSlots();

}  // namespace topology
