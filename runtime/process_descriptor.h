#pragma once

#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

#include "runtime/file_descriptor.h"

namespace vtq {

/// Returns a pidfd, which becomes readable when the process ends; none on an error (errno says
/// which). Uses the system call, because the C library's header for it does not work in C++.
inline FileDescriptor OpenProcess(pid_t process) noexcept {
  return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
}

}  // namespace vtq
