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

/// Mounts an empty tmpfs over the directory `place`, with limits as tmpfs(5) writes them
/// ("size=4096,nr_inodes=10"). Throws like EnterNamespaces.
void MountMemory(const std::string& place, const std::string& limits = "");

/// Bind-mounts the file or directory `from`, with the mounts in it, over `place`. Throws like
/// EnterNamespaces.
void ShowAt(const std::string& from, const std::string& place);

/// Sets the host name. Call it before the framework's services are asked for the system's name,
/// because they remember it. `hostsFile` is overwritten and bind-mounted over /etc/hosts, so that
/// this machine's own names are not found. Throws like EnterNamespaces.
void NameSystem(const std::string& name, const std::string& hostsFile);

}  // namespace pciinfo
