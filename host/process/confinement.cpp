// SPDX-License-Identifier: Apache-2.0
#include "host/process/confinement.h"

#include <linux/capability.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>

namespace pciinfo {
namespace {

using CapabilitySets = std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3>;

bool IsNeeded(unsigned capability) noexcept {
  switch (capability) {
    case CAP_DAC_OVERRIDE:
    case CAP_DAC_READ_SEARCH:
    case CAP_SYS_ADMIN:  // configuration space beyond its first 64 bytes
    case CAP_SYS_RAWIO:  // firmware tables that tools look for in memory
      return true;
    default:
      return false;
  }
}

bool HasBit(const CapabilitySets& sets, unsigned capability) noexcept {
  return (sets[CAP_TO_INDEX(capability)].effective & CAP_TO_MASK(capability)) != 0;
}

void ClearBit(CapabilitySets& sets, unsigned capability) noexcept {
  __user_cap_data_struct& data = sets[CAP_TO_INDEX(capability)];
  const __u32 mask = ~CAP_TO_MASK(capability);
  data.effective &= mask;
  data.permitted &= mask;
  data.inheritable &= mask;
}

/// The bounding set holds for the programs that are started, the other sets for this one.
template <class Predicate>
void GiveUp(const Predicate& goes) noexcept {
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  CapabilitySets sets{};
  if (syscall(SYS_capget, &header, sets.data()) != 0) return;
  const bool isBoundFree = HasBit(sets, CAP_SETPCAP);  // as it is the first time only
  for (unsigned capability = 0; capability <= CAP_LAST_CAP; ++capability) {
    if (!goes(capability)) continue;
    if (isBoundFree) prctl(PR_CAPBSET_DROP, capability);
    ClearBit(sets, capability);
  }
  syscall(SYS_capset, &header, sets.data());
}

}  // namespace

void GiveUpPrivileges() noexcept {
  GiveUp([](unsigned capability) { return !IsNeeded(capability); });
  prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
  const rlimit none{0, 0};
  setrlimit(RLIMIT_CORE, &none);
}

void GiveUpHardwareAccess() noexcept {
  GiveUp([](unsigned capability) { return capability == CAP_SYS_RAWIO; });
}

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
