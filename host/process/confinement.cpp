// SPDX-License-Identifier: Apache-2.0
#include "host/process/confinement.h"

#include <grp.h>
#include <linux/capability.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>

#include "host/process/capabilities.h"
#include "host/process/file_rules.h"
#include "host/process/system_call_filter.h"

namespace pciinfo {
namespace {

// Linux: the user and the group "nobody", which own nothing.
constexpr unsigned kNobody = 65534;

// At its end a build for sanitizers or coverage writes files and looks at itself, which takes the
// user that started it and its file rights.
#ifdef PCIINFO_WATCHED_END
constexpr bool kIsWatched = true;
#else
constexpr bool kIsWatched = false;
#endif

// The kernel shows only a holder of CAP_SYS_ADMIN more of a configuration space than its first 64
// bytes. The filter of system calls takes what else that capability is for.
constexpr Capabilities kReading = {CAP_DAC_READ_SEARCH, CAP_SYS_ADMIN};

/// A program that was started with another user's rights goes on as its caller.
void BecomeOrdinaryUser() noexcept {
  const gid_t group = getgid() != 0 ? getgid() : kNobody;
  const uid_t user = getuid() != 0 ? getuid() : kNobody;
  setgroups(0, nullptr);
  if (setresgid(group, group, group) != 0) return;
  [[maybe_unused]] const int ignored = setresuid(user, user, user);
}

/// Asks for the user of this process, without the capabilities that it has.
bool CanUserRead(const std::vector<std::string>& files) noexcept {
  return std::all_of(files.begin(), files.end(),
                     [](const std::string& file) { return access(file.c_str(), R_OK) == 0; });
}

/// Which of the capabilities stays turns out when the user is another one.
void GiveUpRights(const Needs& needs) noexcept {
  LimitCapabilitiesOfPrograms({});
  prctl(PR_SET_KEEPCAPS, 1);
  if (geteuid() == 0 && !needs.keepsUser && !kIsWatched) BecomeOrdinaryUser();
  prctl(PR_SET_KEEPCAPS, 0);
  if (CanUserRead(needs.files)) return KeepCapabilities({});
  KeepCapabilities({CAP_DAC_READ_SEARCH});
}

}  // namespace

// The rules for files come first: it may take rights to reach the directories in them.
Confined Confine(const Needs& needs) noexcept {
  Confined done;
  const rlimit none{0, 0};
  setrlimit(RLIMIT_CORE, &none);
  prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
  if (!kIsWatched) done.fileRules = WriteOnlyBelow(needs.writable);
  if (needs.liveMachine) {
    LimitCapabilitiesOfPrograms(kReading);
    KeepCapabilities(kReading);
  } else {
    GiveUpRights(needs);
  }
  done.filtersCalls = FilterSystemCalls(needs.liveMachine ? RefusedCalls::kPowerful
                                                          : RefusedCalls::kPowerfulAndNetwork);
  done.hasNoCapabilities = HasNoCapabilities();
  done.isOrdinaryUser = geteuid() != 0;
  return done;
}

void GiveUpReading() noexcept { GiveUpCapability(CAP_DAC_READ_SEARCH); }

void GiveUpHardwareAccess() noexcept { GiveUpCapability(CAP_SYS_RAWIO); }

void LimitMemory(std::uint64_t bytes) noexcept {
  rlimit limit{};
  if (getrlimit(RLIMIT_AS, &limit) != 0) return;
  if (bytes < limit.rlim_cur) limit.rlim_cur = bytes;
  setrlimit(RLIMIT_AS, &limit);
}

bool HasRoom() noexcept {
  constexpr std::size_t kRoom = 16U << 20U;
  void* const room = mmap(nullptr, kRoom, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (room == MAP_FAILED) return false;
  munmap(room, kRoom);
  return true;
}

}  // namespace pciinfo
