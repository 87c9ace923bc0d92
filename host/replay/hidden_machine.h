// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace pciinfo {

/// Hides this machine behind the directory `tree`, for this process and its children, in their
/// own mount namespace (see EnterNamespaces): /proc and /sys become the directories "proc" and
/// "sys" of `tree`; /etc, /dev, /run, /boot and the kernel's modules have only what programs need
/// to run. Of the real /proc the processes' own entries are left. The programs and libraries of the
/// machine stay where they are, as do `files` in places that are hidden. Throws like
/// EnterNamespaces.
void HideMachine(const std::string& tree, const std::vector<std::string>& files);

}  // namespace pciinfo
