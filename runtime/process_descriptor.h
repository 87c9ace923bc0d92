#pragma once

#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

#include "runtime/file_descriptor.h"

namespace vtq {

/// A descriptor of a process, which is readable once that has ended; none on an error (errno says
/// which). As a system call: the C library's header for it is not made for C++.
inline FileDescriptor OpenProcess(pid_t process) noexcept {
  return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
}

}  // namespace vtq
