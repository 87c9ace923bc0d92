// SPDX-License-Identifier: Apache-2.0
#include "host/process/system_call_filter.h"

#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <bit>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <span>

namespace pciinfo {
namespace {

// A list of what is refused, and not of what is allowed: plug-ins and tools are other people's
// programs, and a call that a newer C library makes must not end them. Calls without a macro here
// are newer than the system's headers; from number 424 on all architectures share the numbers.
constexpr int kPowerfulCalls[] = {
    // What is mounted where, namespaces, the system's name.
    SYS_mount,
    SYS_umount2,
    SYS_pivot_root,
    SYS_chroot,
    SYS_move_mount,
    SYS_open_tree,
    SYS_fsopen,
    SYS_fsconfig,
    SYS_fsmount,
    SYS_fspick,
    SYS_mount_setattr,
    SYS_setns,
    SYS_unshare,
    SYS_sethostname,
    SYS_setdomainname,
    467 /* open_tree_attr */,
    // Other processes.
    SYS_ptrace,
    SYS_process_vm_readv,
    SYS_process_vm_writev,
    SYS_process_madvise,
    SYS_kcmp,
    SYS_pidfd_getfd,
    SYS_migrate_pages,
    SYS_move_pages,
    // The kernel: its code, memory, clock, keys, logs and what has had many mistakes.
    SYS_init_module,
    SYS_finit_module,
    SYS_delete_module,
    SYS_kexec_load,
    SYS_bpf,
    SYS_perf_event_open,
    SYS_userfaultfd,
    SYS_io_uring_setup,
    SYS_io_uring_enter,
    SYS_io_uring_register,
    SYS_add_key,
    SYS_request_key,
    SYS_keyctl,
    SYS_fanotify_init,
    SYS_reboot,
    SYS_acct,
    SYS_settimeofday,
    SYS_clock_settime,
    SYS_adjtimex,
    SYS_clock_adjtime,
    SYS_quotactl,
    SYS_quotactl_fd,
    SYS_swapon,
    SYS_swapoff,
    SYS_vhangup,
    SYS_nfsservctl,
    SYS_lookup_dcookie,
#ifdef SYS_kexec_file_load
    SYS_kexec_file_load,
#endif
#ifdef SYS_iopl
    SYS_iopl,
    SYS_ioperm,
#endif
#ifdef SYS_modify_ldt
    SYS_modify_ldt,
#endif
    // Files: past the directories to them, cutting them off without opening them for writing, and
    // what an owner may change beside their content.
    SYS_truncate,
    SYS_open_by_handle_at,
    SYS_name_to_handle_at,
    SYS_fchmod,
    SYS_fchmodat,
    452 /* fchmodat2 */,
    SYS_fchown,
    SYS_fchownat,
    SYS_mknodat,
    SYS_setxattr,
    SYS_lsetxattr,
    SYS_fsetxattr,
    SYS_removexattr,
    SYS_lremovexattr,
    SYS_fremovexattr,
    463 /* setxattrat */,
    466 /* removexattrat */,
    469 /* file_setattr */,
#ifdef SYS_chmod
    SYS_chmod,
    SYS_chown,
    SYS_lchown,
    SYS_mknod,
#endif
};

constexpr int kNetworkCalls[] = {SYS_socket, SYS_bind, SYS_connect, SYS_listen, SYS_accept4,
#ifdef SYS_accept
                                 SYS_accept
#endif
};

#if defined(__x86_64__)
constexpr std::uint32_t kArchitecture = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr std::uint32_t kArchitecture = AUDIT_ARCH_AARCH64;
#elif defined(__riscv) && __riscv_xlen == 64
constexpr std::uint32_t kArchitecture = AUDIT_ARCH_RISCV64;
#else
constexpr std::uint32_t kArchitecture = 0;  // no filter: its calls have not been looked at
#endif

constexpr std::uint32_t kNewNamespaces = CLONE_NEWNS | CLONE_NEWCGROUP | CLONE_NEWUTS |
                                         CLONE_NEWIPC | CLONE_NEWUSER | CLONE_NEWPID | CLONE_NEWNET;

constexpr std::uint32_t Refusal(int error) {
  return SECCOMP_RET_ERRNO | (static_cast<std::uint32_t>(error) & SECCOMP_RET_DATA);
}

/// Whether the sanitizers' leak check is to work, which stops its own threads by ptrace.
#ifdef PCIINFO_SANITIZED
constexpr bool kMayTrace = true;
#else
constexpr bool kMayTrace = false;
#endif

/// The program that the kernel runs for each call.
class FilterProgram final {
 public:
  void Add(std::uint16_t code, std::uint32_t value, std::uint8_t ifTrue = 0,
           std::uint8_t ifFalse = 0) noexcept {
    if (size_ < code_.size()) code_[size_++] = {code, ifTrue, ifFalse, value};
  }
  void Load(std::size_t offset) noexcept {
    Add(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset));
  }
  void Return(std::uint32_t answer) noexcept { Add(BPF_RET | BPF_K, answer); }
  /// The next `instructions` are for the value that was loaded last only.
  void If(std::uint32_t value, std::uint8_t instructions = 1) noexcept {
    Add(BPF_JMP | BPF_JEQ | BPF_K, value, 0, instructions);
  }

  bool Install() noexcept {
    sock_fprog program{static_cast<unsigned short>(size_), code_.data()};
    // Without this flag some kernels slow down the whole process.
    return syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_SPEC_ALLOW,
                   &program) == 0 ||
           syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &program) == 0;
  }

 private:
  std::array<sock_filter, 256> code_{};
  std::size_t size_ = 0;
};

void Refuse(FilterProgram& program, std::span<const int> calls) noexcept {
  for (const int call : calls) {
    if (kMayTrace && call == SYS_ptrace) continue;
    program.If(static_cast<std::uint32_t>(call));
    program.Return(Refusal(EPERM));
  }
}

/// A program of another architecture (32 bits) has other numbers for its calls: it gets none.
void RefuseOtherArchitectures(FilterProgram& program) noexcept {
  program.Load(offsetof(seccomp_data, arch));
  program.Add(BPF_JMP | BPF_JEQ | BPF_K, kArchitecture, 1, 0);
  program.Return(Refusal(ENOSYS));
  program.Load(offsetof(seccomp_data, nr));
#ifdef __x86_64__
  constexpr std::uint32_t kFirstOfX32 = 0x40000000;
  program.Add(BPF_JMP | BPF_JGE | BPF_K, kFirstOfX32, 0, 1);
  program.Return(Refusal(ENOSYS));
#endif
}

/// Opening for reading may not cut off a file, which the rules for files leave to this filter (see
/// file_rules.cpp).
void RefuseTruncation(FilterProgram& program, int call, std::size_t flagsArgument) noexcept {
  program.If(static_cast<std::uint32_t>(call), 6);
  program.Load(offsetof(seccomp_data, args) + flagsArgument * sizeof(seccomp_data::args[0]));
  program.Add(BPF_ALU | BPF_AND | BPF_K, O_TRUNC | O_ACCMODE);
  program.Add(BPF_JMP | BPF_JEQ | BPF_K, O_TRUNC | O_RDONLY, 1, 0);
  program.If(O_TRUNC | O_ACCMODE);  // neither reading nor writing
  program.Return(Refusal(EPERM));
  program.Return(SECCOMP_RET_ALLOW);
}

/// The newer call has its flags in memory, where no filter reads. Programs take the older ones when
/// it seems to be missing.
void RefuseTruncationByOpening(FilterProgram& program) noexcept {
  RefuseTruncation(program, SYS_openat, 2);
#ifdef SYS_open
  RefuseTruncation(program, SYS_open, 1);
#endif
  program.If(SYS_openat2);
  program.Return(Refusal(ENOSYS));
}

/// Lets processes and threads be made, but no namespaces. The newer call has its flags in memory
/// too.
void RefuseNewNamespaces(FilterProgram& program) noexcept {
  program.If(SYS_clone3);
  program.Return(Refusal(ENOSYS));
  program.Add(BPF_JMP | BPF_JEQ | BPF_K, SYS_clone, 0, 3);
  program.Load(offsetof(seccomp_data, args));
  program.Add(BPF_JMP | BPF_JSET | BPF_K, kNewNamespaces, 0, 1);
  program.Return(Refusal(EPERM));
}

}  // namespace

bool FilterSystemCalls(RefusedCalls refused) noexcept {
  static_assert(std::endian::native == std::endian::little || kArchitecture == 0);
  if (kArchitecture == 0) return false;
  FilterProgram program;
  RefuseOtherArchitectures(program);
  RefuseTruncationByOpening(program);  // first, as files are opened most often
  Refuse(program, kPowerfulCalls);
  if (refused == RefusedCalls::kPowerfulAndNetwork) Refuse(program, kNetworkCalls);
  RefuseNewNamespaces(program);
  program.Return(SECCOMP_RET_ALLOW);
  return program.Install();
}

}  // namespace pciinfo
