// SPDX-License-Identifier: Apache-2.0
#pragma once

// The kernel's files with the PCI functions and their configuration space.
inline constexpr const char* kProcBusPci = "/proc/bus/pci";
inline constexpr const char* kProcPci = "/proc/pci";  ///< only in very old kernels
