// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace pciinfo {

/// Moves the process, which must have only one thread, into new mount and host-name (UTS)
/// namespaces: its mounts and its host name are visible only to itself and its children and
/// disappear with them. An ordinary user also gets a user namespace, which grants the right to
/// mount and keeps the user's identity. Throws std::runtime_error, which says what to do, when the
/// kernel does not allow it.
void EnterNamespaces();

/// Mounts an empty tmpfs, which its maker may write, over the directory `place`, with limits as
/// tmpfs(5) writes them ("size=4096,nr_inodes=10"). Throws like EnterNamespaces.
void MountMemory(const std::string& place, const std::string& limits = "");

/// Bind-mounts the file or directory `from`, with the mounts in it, over `place`. Throws like
/// EnterNamespaces.
void ShowAt(const std::string& from, const std::string& place);

/// Makes the host name empty. Throws like EnterNamespaces.
void HideSystemName();

}  // namespace pciinfo
