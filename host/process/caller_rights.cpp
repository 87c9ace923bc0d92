// SPDX-License-Identifier: Apache-2.0
#include "host/process/caller_rights.h"

#include <linux/capability.h>
#include <sys/auxv.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

namespace pciinfo {
namespace {

/// Where there is doubt it has some.
bool HasCapabilities() noexcept {
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3> sets{};
  if (syscall(SYS_capget, &header, sets.data()) != 0) return true;
  return std::any_of(sets.begin(), sets.end(), [](const auto& set) { return set.permitted != 0; });
}

/// Whether a tool says in its variable that it started the program for another user.
bool IsForAnotherUser(const ProcessRights& rights, const Variable& variable) {
  for (const char* name : {"SUDO_UID", "PKEXEC_UID"}) {
    const char* const user = variable(name);
    if (user != nullptr && user != std::to_string(rights.realUser)) return true;
  }
  return variable("DOAS_USER") != nullptr;
}

}  // namespace

CallerRights RightsOfCaller(const ProcessRights& rights, const Variable& variable) {
  const bool isOtherUser = rights.realUser != rights.effectiveUser;
  if (rights.isSecureExecution || isOtherUser) return CallerRights::kFewerAndOwnEnvironment;
  const bool isLent = rights.hasCapabilities && rights.effectiveUser != 0;
  if (isLent || IsForAnotherUser(rights, variable)) return CallerRights::kFewer;
  return CallerRights::kSame;
}

CallerRights RightsOfCaller() {
  return RightsOfCaller({getauxval(AT_SECURE) != 0, getuid(), geteuid(), HasCapabilities()},
                        [](const char* name) { return std::getenv(name); });
}

}  // namespace pciinfo
