// SPDX-License-Identifier: Apache-2.0
#include "host/process/file_rules.h"

#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>

#include "runtime/file_descriptor.h"

namespace pciinfo {
namespace {

// The system's header may be older than the kernel, so what came after its first version stands
// here: the layout and the flags are the kernel's interface and never change.
constexpr std::uint64_t kRefer = 1U << 13U;        // version 2: renaming between directories
constexpr std::uint64_t kDeviceIoctl = 1U << 15U;  // version 5
constexpr std::uint64_t kScopeSockets = 1U << 0U;  // version 6: abstract ones, of others
constexpr std::uint64_t kScopeSignals = 1U << 1U;

struct Ruleset {
  std::uint64_t files = 0;
  std::uint64_t network = 0;  // version 4
  std::uint64_t scopes = 0;   // version 6
};

constexpr std::uint64_t kOnFiles = LANDLOCK_ACCESS_FS_WRITE_FILE;
constexpr std::uint64_t kOnDirectories =
    LANDLOCK_ACCESS_FS_REMOVE_DIR | LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_CHAR |
    LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_MAKE_SOCK |
    LANDLOCK_ACCESS_FS_MAKE_FIFO | LANDLOCK_ACCESS_FS_MAKE_BLOCK | LANDLOCK_ACCESS_FS_MAKE_SYM;

// Reading is not ruled: what may be read, the mounts and the file modes say. Nor is truncating
// (version 3): with a rule for it the kernel walks the path of every file that is opened, also for
// reading, which costs a quarter of the time of `lspci`. FilterSystemCalls refuses it instead.
Ruleset RulesOf(int version) noexcept {
  Ruleset rules{kOnFiles | kOnDirectories, 0, 0};
  if (version >= 2) rules.files |= kRefer;
  if (version >= 5) rules.files |= kDeviceIoctl;
  if (version >= 6) rules.scopes = kScopeSockets | kScopeSignals;
  return rules;
}

void Allow(const vtq::FileDescriptor& ruleset, const char* path, std::uint64_t access) noexcept {
  const vtq::FileDescriptor place(open(path, O_PATH | O_CLOEXEC));
  if (!place.IsOpen()) return;
  landlock_path_beneath_attr rule{};
  rule.allowed_access = access;
  rule.parent_fd = place.Get();
  syscall(SYS_landlock_add_rule, ruleset.Get(), LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
}

}  // namespace

int WriteOnlyBelow(const std::vector<std::string>& writable) noexcept {
  const auto version = static_cast<int>(
      syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION));
  if (version <= 0) return 0;
  const Ruleset rules = RulesOf(version);
  // Older kernels take a longer structure when what they do not know is zero.
  const vtq::FileDescriptor ruleset(
      static_cast<int>(syscall(SYS_landlock_create_ruleset, &rules, sizeof rules, 0)));
  if (!ruleset.IsOpen()) return 0;
  Allow(ruleset, "/dev/null", kOnFiles);
  for (const std::string& place : writable)
    Allow(ruleset, place.c_str(), rules.files & ~kDeviceIoctl);
  return syscall(SYS_landlock_restrict_self, ruleset.Get(), 0) == 0 ? version : 0;
}

}  // namespace pciinfo
