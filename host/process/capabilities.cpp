// SPDX-License-Identifier: Apache-2.0
#include "host/process/capabilities.h"

#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace pciinfo {
namespace {

/// The kernel's interface has this many bits for capabilities.
constexpr unsigned kMostCapabilities = 32 * _LINUX_CAPABILITY_U32S_3;

using CapabilitySets = std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3>;

// The C library has no functions for these calls.
bool ReadSets(CapabilitySets& sets) noexcept {
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  return syscall(SYS_capget, &header, sets.data()) == 0;
}

void WriteSets(const CapabilitySets& sets) noexcept {
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  syscall(SYS_capset, &header, sets.data());
}

bool Holds(Capabilities capabilities, unsigned capability) noexcept {
  return std::find(capabilities.begin(), capabilities.end(), capability) != capabilities.end();
}

/// Keeps what is in `kept` and was permitted before, and puts it in effect.
void KeepOwn(CapabilitySets& sets, Capabilities kept) noexcept {
  CapabilitySets masks{};
  for (const unsigned capability : kept) {
    masks[CAP_TO_INDEX(capability)].permitted |= CAP_TO_MASK(capability);
  }
  for (std::size_t i = 0; i < sets.size(); ++i) {
    const __u32 permitted = sets[i].permitted & masks[i].permitted;
    sets[i] = {permitted, permitted, 0};
  }
}

}  // namespace

// The kernel may have capabilities that <linux/capability.h> does not know yet, so the loop goes on
// until the kernel refuses: it does not know the next one, or this process lacks CAP_SETPCAP.
void LimitCapabilitiesOfPrograms(Capabilities most) noexcept {
  for (unsigned capability = 0; capability < kMostCapabilities; ++capability) {
    if (!Holds(most, capability) && prctl(PR_CAPBSET_DROP, capability) != 0) break;
  }
  prctl(PR_CAP_AMBIENT, PR_CAP_AMBIENT_CLEAR_ALL, 0, 0, 0);
}

void KeepCapabilities(Capabilities kept) noexcept {
  CapabilitySets sets{};
  if (!ReadSets(sets)) return;
  KeepOwn(sets, kept);
  WriteSets(sets);
}

void GiveUpCapability(unsigned capability) noexcept {
  CapabilitySets sets{};
  if (!ReadSets(sets)) return;
  prctl(PR_CAPBSET_DROP, capability);
  __user_cap_data_struct& data = sets[CAP_TO_INDEX(capability)];
  const __u32 mask = ~CAP_TO_MASK(capability);
  data = {data.effective & mask, data.permitted & mask, data.inheritable & mask};
  WriteSets(sets);
}

bool HasNoCapabilities() noexcept {
  CapabilitySets sets{};
  return ReadSets(sets) && std::all_of(sets.begin(), sets.end(), [](const auto& data) {
           return data.permitted == 0 && data.inheritable == 0;
         });
}

}  // namespace pciinfo
