// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace pciinfo {

/// Has the kernel (Landlock) refuse this process and the programs that it starts, for good, to open
/// for writing, make, remove or rename files, but below the directories `writable`; and to send
/// signals to processes outside, where the kernel can. Files that are open stay so. Answers the
/// version of Landlock that does it; 0 when the kernel has none. The process must not be able to
/// gain privileges (PR_SET_NO_NEW_PRIVS).
int WriteOnlyBelow(const std::vector<std::string>& writable) noexcept;

}  // namespace pciinfo
