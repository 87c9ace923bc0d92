// SPDX-License-Identifier: Apache-2.0

// Each test in a child process of its own: there is no way back.

#include "host/process/confinement.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <linux/openat2.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include "host/process/capabilities.h"
#include "tests/host/run_program.h"
#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

/// Whether `holds` is true in a child.
bool HoldsInChild(const std::function<bool()>& holds) {
  return RunInChild([&] { return holds() ? 0 : 1; }).status == 0;
}

// An ordinary user cannot change the bounding set, which gives such a user nothing.
const char* const kSets = geteuid() == 0 ? "Cap[IPEB]*" : "Cap[IPE]*";

/// Whether a program that is started now has the capability in any of its sets.
bool ProgramsHave(unsigned capability) {
  const RunResult child =
      RunProcess({"/bin/bash", "-c",
                  "while read -r name value; do case $name in $1) "
                  "(( (16#$value >> $0 & 1) == 0 )) || exit 1;; esac; done </proc/self/status",
                  std::to_string(capability), kSets});
  return child.status == 1;
}

/// Whether this process has it in effect.
bool ThisProcessHas(unsigned capability) {
  const RunResult grep = RunProcess({"/bin/bash", "-c", "exec grep CapEff /proc/$PPID/status"});
  const std::string mask = grep.out.substr(grep.out.find_last_of('\t') + 1);
  return (std::stoull(mask, nullptr, 16) >> capability & 1) != 0;
}

TEST(Confinement, HardwareAccessIsGivenUpForProgramsToo) {
  EXPECT_TRUE(HoldsInChild([] {
    GiveUpHardwareAccess();
    return !ThisProcessHas(CAP_SYS_RAWIO) && !ProgramsHave(CAP_SYS_RAWIO);
  }));
}

TEST(Confinement, ForThisMachineOnlyTheRightToReadStays) {
  EXPECT_TRUE(HoldsInChild([] {
    const bool canRead = ThisProcessHas(CAP_DAC_READ_SEARCH);
    const bool seesAll = ThisProcessHas(CAP_SYS_ADMIN);  // of configuration spaces
    Confine({.liveMachine = true});
    return ThisProcessHas(CAP_DAC_READ_SEARCH) == canRead &&
           ProgramsHave(CAP_DAC_READ_SEARCH) == canRead && ProgramsHave(CAP_SYS_ADMIN) == seesAll &&
           !ThisProcessHas(CAP_DAC_OVERRIDE) && !ProgramsHave(CAP_DAC_OVERRIDE) &&
           !ProgramsHave(CAP_SYS_RAWIO) && !ProgramsHave(CAP_NET_ADMIN);
  }));
}

TEST(Confinement, ForACaptureNoCapabilityStays) {
  EXPECT_TRUE(HoldsInChild([] {
    const bool said = Confine({}).hasNoCapabilities;
    for (unsigned capability = 0; capability <= CAP_LAST_CAP; ++capability) {
      if (ThisProcessHas(capability) || ProgramsHave(capability)) return false;
    }
    return said;
  }));
}

// A sanitizer keeps its user and writes files: see confinement.cpp.
#ifndef PCIINFO_SANITIZED
TEST(Confinement, ForACaptureRootBecomesAnOrdinaryUser) {
  EXPECT_TRUE(HoldsInChild([] {
    const uid_t before = geteuid();
    const Confined done = Confine({});
    const uid_t nobody = 65534;
    return done.isOrdinaryUser && getuid() == geteuid() && getgid() == getegid() &&
           geteuid() == (before == 0 ? nobody : before);
  }));
}

TEST(Confinement, TheUserStaysWhereFilesAreMadeForHim) {
  EXPECT_TRUE(HoldsInChild([] {
    const uid_t before = geteuid();
    Confine({.keepsUser = true});
    return geteuid() == before;
  }));
}

TEST(Confinement, FilesOfRootsCanBeReadUntilTheyAreLoaded) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can read what its user cannot";
  const vtq::TemporaryDirectory directory;  // which only its user may enter
  const std::string file = directory.Write("plugin", "code");
  EXPECT_TRUE(HoldsInChild([&file] {
    const auto canRead = [&file] { return std::ifstream(file).is_open(); };
    const Confined done = Confine({.files = {file}});
    const bool could = canRead();
    GiveUpReading();
    return !done.hasNoCapabilities && could && !canRead() && HasNoCapabilities();
  }));
}

TEST(Confinement, FilesAreMadeInNamedDirectoriesOnly) {
  const vtq::TemporaryDirectory own;
  const vtq::TemporaryDirectory other;
  other.Write("old", "content");
  EXPECT_TRUE(HoldsInChild([&] {
    const Confined done = Confine({.liveMachine = true, .writable = {own.GetPath()}});
    if (done.fileRules == 0) return true;  // a kernel without Landlock
    const auto canMake = [](const std::string& file) { return std::ofstream(file).is_open(); };
    return canMake(own / "new") && !canMake(other / "new") && !canMake(other / "old") &&
           unlink((other / "old").c_str()) != 0 && canMake("/dev/null");
  }));
}
#endif

/// Tries each call that cuts off a file without opening it for writing.
bool CanBeCutOff(const char* file) {
  open_how how{};
  how.flags = O_RDONLY | O_TRUNC;
  bool can = truncate(file, 0) == 0 || open(file, O_RDONLY | O_TRUNC) >= 0 ||
             open(file, O_ACCMODE | O_TRUNC) >= 0 ||
             syscall(SYS_openat2, AT_FDCWD, file, &how, sizeof how) >= 0;
#ifdef SYS_open
  can = can || syscall(SYS_open, file, O_RDONLY | O_TRUNC) >= 0;
#endif
  return can;
}

TEST(Confinement, OnlyWhoMayWriteAFileCutsItOff) {
  const vtq::TemporaryDirectory directory;
  const std::string file = directory.Write("old", "content");
  EXPECT_TRUE(HoldsInChild([&file] {
    if (!Confine({.liveMachine = true}).filtersCalls) return true;  // a kernel without filters
    return !CanBeCutOff(file.c_str()) && open(file.c_str(), O_RDONLY) >= 0;
  }));
  EXPECT_EQ(std::filesystem::file_size(file), 7U);
}

/// Whether the call fails for want of permission in a process with those needs.
bool IsRefused(const Needs& needs, const std::function<long()>& call) {
  return HoldsInChild([&] {
    Confine(needs);
    return call() < 0 && errno == EPERM;
  });
}

TEST(Confinement, CallsThatReachBeyondFilesAreRefused) {
  for (const bool liveMachine : {false, true}) {
    const Needs needs{.liveMachine = liveMachine};
    EXPECT_TRUE(IsRefused(needs, [] { return mount("x", "/mnt", "tmpfs", 0, nullptr); }));
    EXPECT_TRUE(IsRefused(needs, [] { return unshare(CLONE_NEWUSER); }));
    EXPECT_TRUE(IsRefused(needs, [] { return syscall(SYS_bpf, 0, nullptr, 0); }));
    EXPECT_TRUE(IsRefused(needs, [] { return syscall(SYS_io_uring_setup, 1, nullptr); }));
    EXPECT_TRUE(IsRefused(needs, [] { return syscall(SYS_keyctl, 0, 0, 0, 0, 0); }));
    EXPECT_TRUE(IsRefused(needs, [] { return chmod("/dev/null", 0666); }));
    EXPECT_TRUE(
        IsRefused(needs, [] { return syscall(SYS_clone, CLONE_NEWUSER | SIGCHLD, 0, 0, 0, 0); }));
  }
}

TEST(Confinement, ACaptureReachesNoNetwork) {
  EXPECT_TRUE(IsRefused({}, [] { return socket(AF_INET, SOCK_DGRAM, 0); }));
  EXPECT_FALSE(IsRefused({.liveMachine = true}, [] { return socket(AF_INET, SOCK_DGRAM, 0); }));
}

TEST(Confinement, ProcessesAndThreadsCanBeMade) {
  EXPECT_TRUE(HoldsInChild([] {
    Confine({});
    bool ran = false;
    std::thread([&ran] { ran = true; }).join();
    return ran && RunProcess({"true"}).status == 0;
  }));
}

TEST(Confinement, NobodyGainsPrivilegesAndNoCoreIsWritten) {
  EXPECT_TRUE(HoldsInChild([] {
    Confine({.liveMachine = true});
    rlimit core{};
    getrlimit(RLIMIT_CORE, &core);
    return prctl(PR_GET_NO_NEW_PRIVS, 0, 0, 0, 0) == 1 && core.rlim_max == 0;
  }));
}

// A sanitizer takes more addresses than any limit.
#ifndef PCIINFO_SANITIZED
TEST(Confinement, MemoryBeyondTheLimitIsNotToBeHad) {
  EXPECT_TRUE(HoldsInChild([] {
    LimitMemory(256U << 20U);
    const bool had = HasRoom();
    LimitMemory(1);
    return had && !HasRoom();
  }));
}

TEST(Confinement, ALowerLimitStays) {
  EXPECT_TRUE(HoldsInChild([] {
    LimitMemory(1);
    LimitMemory(256U << 20U);
    return !HasRoom();
  }));
}
#endif

}  // namespace
}  // namespace pciinfo
