#pragma once

namespace bench {

// Where the wrapper of lspci finds the real one and notes what it took, in the mount namespace that
// measurements are made in.
inline constexpr const char* kLspci = "/usr/bin/lspci";
inline constexpr const char* kBenchFolder = "/mnt";
inline constexpr const char* kRealLspci = "/mnt/lspci";
inline constexpr const char* kLspciNotes = "/mnt/lspci-seconds";

}  // namespace bench
