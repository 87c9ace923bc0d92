// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace pciinfo {

/// What a filter of system calls refuses.
enum class RefusedCalls {
  kPowerful,           ///< what changes the machine or reaches into other processes
  kPowerfulAndNetwork  ///< sockets as well
};

/// Has the kernel refuse system calls of this process and of the programs that it starts, for good.
/// A refused call fails with EPERM. Answers whether the kernel does so: it may lack filters, and
/// the process must not be able to gain privileges (PR_SET_NO_NEW_PRIVS).
bool FilterSystemCalls(RefusedCalls refused) noexcept;

}  // namespace pciinfo
