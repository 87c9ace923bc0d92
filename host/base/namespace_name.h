// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace pciinfo {

/// The namespace of all classes.
inline constexpr const char* kNamespaceName = "root/cimv2";

}  // namespace pciinfo
