#pragma once

#include <sys/types.h>

namespace pciinfo {

/// From here on processes whose parents have ended become children of this one, if it is the
/// nearest ancestor that has called this. It is not passed on to children.
void AdoptOrphans() noexcept;

/// Kills a child with its process group and waits for its end, then does the same with every
/// process that becomes a child by that. A process that the kernel does not let go within two
/// seconds is left to it.
void KillTree(pid_t child) noexcept;

/// The same for whatever children are left.
void KillChildren() noexcept;

}  // namespace pciinfo
