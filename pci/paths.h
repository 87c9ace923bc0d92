#pragma once

// Where the kernel shows the PCI functions and their configuration space.
inline constexpr const char* kProcBusPci = "/proc/bus/pci";
inline constexpr const char* kProcPci = "/proc/pci";  ///< kernels of long ago
