#pragma once

namespace NQZMVTQ20 {

// The version of this contract, which a plug-in answers as "MAJOR.MINOR" (GetInterfaceVersion). A
// host takes plug-ins of its own major version and of a minor version that is not above its own: a
// change that old plug-ins cannot live with raises the first number, an addition the second.
inline constexpr int kInterfaceMajorVersion = 1;
inline constexpr int kInterfaceMinorVersion = 0;

}  // namespace NQZMVTQ20
