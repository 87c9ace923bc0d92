#pragma once

#include <string>

namespace pciinfo {

/// Moves the process, which must have one thread, into mount and host-name namespaces of its own:
/// what it mounts and names is seen by itself and its children only, and is gone when they are. An
/// ordinary user gets a user namespace besides, in which the user stays who it is. Throws
/// std::runtime_error, which says what to do, where the kernel does not allow it.
void EnterNamespaces();

/// Mounts an empty file system in memory over the directory `place`. Throws like EnterNamespaces.
void MountMemory(const std::string& place);

/// Shows the file or directory `from`, with what is mounted in it, at `place` as well. Throws like
/// EnterNamespaces.
void ShowAt(const std::string& from, const std::string& place);

/// Names the system. The framework's services say so as well, unless they were asked for the name
/// before. `hostsFile` is a file that may be written, and is shown as /etc/hosts, so that no name
/// of this machine's own is found. Throws like EnterNamespaces.
void NameSystem(const std::string& name, const std::string& hostsFile);

}  // namespace pciinfo
