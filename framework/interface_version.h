// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace NQZMVTQ20 {

// The version of this contract, which a plug-in returns as "MAJOR.MINOR" (GetInterfaceVersion). A
// host accepts plug-ins of its own major version and of the same or a lower minor version. A change
// that breaks old plug-ins raises the major version, an addition the minor version.
inline constexpr int kInterfaceMajorVersion = 1;
inline constexpr int kInterfaceMinorVersion = 0;

}  // namespace NQZMVTQ20
