// SPDX-License-Identifier: Apache-2.0

// Each test in a child process of its own: there is no way back.

#include "host/process/confinement.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <functional>

#include "tests/host/run_program.h"

namespace pciinfo {
namespace {

constexpr unsigned kCapNetAdmin = 12;
constexpr unsigned kCapSysRawIo = 17;
constexpr unsigned kCapSysAdmin = 21;

/// Whether `holds` is true in a child.
bool InChild(const std::function<bool()>& holds) {
  return RunInChild([&] { return holds() ? 0 : 1; }).status == 0;
}

/// Whether a program that is started now has the capability in any of its sets.
bool ProgramsHave(unsigned capability) {
  const RunResult child =
      RunProcess({"/bin/bash", "-c",
                  "while read -r name value; do case $name in Cap[IPEB]*) "
                  "(( (16#$value >> $0 & 1) == 0 )) || exit 1;; esac; done </proc/self/status",
                  std::to_string(capability)});
  return child.status == 1;
}

/// Whether this process has it in effect.
bool ThisProcessHas(unsigned capability) {
  const RunResult grep = RunProcess({"/bin/bash", "-c", "exec grep CapEff /proc/$PPID/status"});
  const std::string mask = grep.out.substr(grep.out.find_last_of('\t') + 1);
  return (std::stoull(mask, nullptr, 16) >> capability & 1) != 0;
}

TEST(Confinement, HardwareAccessIsGivenUpForProgramsToo) {
  EXPECT_TRUE(InChild([] {
    GiveUpHardwareAccess();
    return !ThisProcessHas(kCapSysRawIo) && !ProgramsHave(kCapSysRawIo);
  }));
}

TEST(Confinement, WhatCollectingDoesNotNeedIsGivenUp) {
  EXPECT_TRUE(InChild([] {
    GiveUpPrivileges();
    return !ThisProcessHas(kCapNetAdmin) && !ProgramsHave(kCapNetAdmin);
  }));
}

TEST(Confinement, WhatReadsWholeConfigurationSpacesStays) {
  EXPECT_TRUE(InChild([] {
    const bool had = ThisProcessHas(kCapSysAdmin);
    GiveUpPrivileges();
    return ThisProcessHas(kCapSysAdmin) == had && ProgramsHave(kCapSysAdmin) == had;
  }));
}

TEST(Confinement, NobodyGainsPrivilegesAndNoCoreIsWritten) {
  EXPECT_TRUE(InChild([] {
    GiveUpPrivileges();
    rlimit core{};
    getrlimit(RLIMIT_CORE, &core);
    return prctl(PR_GET_NO_NEW_PRIVS, 0, 0, 0, 0) == 1 && core.rlim_max == 0;
  }));
}

// A sanitizer takes more addresses than any limit.
#ifndef PCIINFO_SANITIZED
TEST(Confinement, MemoryBeyondTheLimitIsNotToBeHad) {
  EXPECT_TRUE(InChild([] {
    LimitMemory(256U << 20U);
    const bool had = HasRoom();
    LimitMemory(1);
    return had && !HasRoom();
  }));
}

TEST(Confinement, ALowerLimitStays) {
  EXPECT_TRUE(InChild([] {
    LimitMemory(1);
    LimitMemory(256U << 20U);
    return !HasRoom();
  }));
}
#endif

}  // namespace
}  // namespace pciinfo
