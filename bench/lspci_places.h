// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace bench {

// Paths in the mount namespace of the measurements: where the wrapper of lspci finds the real one
// and where it records the CPU time.
inline constexpr const char* kLspci = "/usr/bin/lspci";
inline constexpr const char* kBenchDirectory = "/mnt";
inline constexpr const char* kRealLspci = "/mnt/lspci";
inline constexpr const char* kLspciNotes = "/mnt/lspci-seconds";

}  // namespace bench
