// SPDX-License-Identifier: Apache-2.0

// The program where the kernel lacks something, or has no more to give: it works without, or says
// in a sentence what was missing.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include "tests/host/failing_calls.h"
#include "tests/host/run_program.h"
#include "tests/runtime/temporary_directory.h"

namespace {

using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr int kCannotFail = 99;

const std::vector<std::string> kSlots = {PCIINFO_PROGRAM, "slots", "--only-plugin",
                                         FakePluginFile("fixed")};

RunResult RunWith(const std::vector<FailingCall>& calls,
                  const std::vector<std::string>& words = kSlots) {
  return RunInChild([&] {
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // the leak checker starts a process
    return MakeCallsFail(calls) ? Execute(words) : kCannotFail;
  });
}

TEST(Scarcity, WhatNewKernelsHaveIsNotNeeded) {
  const RunResult result =
      RunWith({{SYS_pidfd_open, ENOSYS}, {SYS_close_range, ENOSYS}, {SYS_clone3, ENOSYS}});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, RunProcess(kSlots).out);
}

TEST(Scarcity, AToolIsStartedWithoutWhatNewKernelsHave) {
  if (!std::filesystem::exists("/proc/bus/pci")) GTEST_SKIP() << "this machine has no PCI bus";
  const std::vector<std::string> devices = {PCIINFO_PROGRAM, "instances", "QZMSG_PCIDevice"};
  const RunResult result = RunWith({{SYS_close_range, ENOSYS}, {SYS_clone3, ENOSYS}}, devices);
  EXPECT_EQ(result.status, RunProcess(devices).status) << result.err;
  EXPECT_EQ(result.out, RunProcess(devices).out);
}

TEST(Scarcity, AProcessThatCannotBeStartedIsSaid) {
  const RunResult result = RunWith({{SYS_clone, EAGAIN}, {SYS_clone3, EAGAIN}});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "pciinfo: cannot start a process: Resource temporarily unavailable\n");
}

#ifdef SYS_vfork
TEST(Scarcity, AToolThatCannotBeStartedIsSaid) {
  if (!std::filesystem::exists("/proc/bus/pci")) GTEST_SKIP() << "this machine has no PCI bus";
  const RunResult result =
      RunWith({{SYS_vfork, EAGAIN}}, {PCIINFO_PROGRAM, "instances", "QZMSG_PCIDevice"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("cannot be started: Resource temporarily unavailable"));
}
#endif

#ifdef SYS_poll
TEST(Scarcity, WaitingThatFailsEndsTheProgram) {
  const RunResult result = RunWith({{SYS_poll, ENOMEM}});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "pciinfo: cannot wait for a process: Cannot allocate memory\n");
}
#endif

TEST(Scarcity, SignalsThatCannotBeWatchedAreSaid) {
  const RunResult result = RunWith({{SYS_signalfd4, EMFILE}});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "pciinfo: cannot watch for signals: Too many open files\n");
}

// Sanitizers read /proc and have limits of their own.
#ifndef PCIINFO_SANITIZED

// From so few that not even the loader can open a library up to enough.
TEST(Scarcity, TooFewDescriptorsAreSaid) {
  int failures = 0;
  for (rlim_t most = 3; most < 24; ++most) {
    const RunResult result = RunInChild([&] {
      const rlimit limit{most, most};
      return setrlimit(RLIMIT_NOFILE, &limit) == 0 ? Execute(kSlots) : kCannotFail;
    });
    if (result.status == 0) continue;
    ++failures;
    EXPECT_THAT(result.status, AnyOf(1, 127)) << most;
    EXPECT_THAT(result.err, AnyOf(HasSubstr("oo many open files"), HasSubstr("rror 24"),
                                  HasSubstr("cannot wait for a process")))
        << most;
  }
  EXPECT_GT(failures, 0);
  EXPECT_LT(failures, 20);
}

/// Runs the program in a mount namespace after a shell command that changes the mounts.
RunResult RunAfter(const std::string& change, const std::string& words) {
  return RunShell(
      "LIBRARIES=$(dirname $(ldd $PCIINFO | grep -o '/[^ ]*libvtqcore[^ ]*' | head -n 1)); export "
      "LD_LIBRARY_PATH=$LIBRARIES; unshare --user --map-root-user --mount bash -c '" +
      change + " && exec $PCIINFO " + words + "'");
}

class LessMounted : public testing::Test {
 protected:
  void SetUp() override {
    if (RunAfter("true", "--version").status != 0) {
      GTEST_SKIP() << "this user may not make mount namespaces";
    }
  }
};

TEST_F(LessMounted, WithoutProcTheProgramWorks) {
  const RunResult result =
      RunAfter("mount -t tmpfs none /proc", "slots --only-plugin " + FakePluginFile("fixed"));
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, RunProcess(kSlots).out);
}

TEST_F(LessMounted, WithoutProcAndSysThereIsNoPciBus) {
  const RunResult result =
      RunAfter("mount -t tmpfs none /proc && mount -t tmpfs none /sys", "devices");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.err, StartsWith("pciinfo: this machine shows no PCI bus"));
}

TEST_F(LessMounted, WithoutAPlaceForAScratchDirectoryTheProgramWorks) {
  const RunResult result = RunAfter(
      "mount -t tmpfs -o ro none /dev/shm && mount --rbind /tmp /tmp && "
      "mount -o remount,bind,ro /tmp",
      "slots --only-plugin " + FakePluginFile("fixed"));
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, RunProcess(kSlots).out);
}

TEST(Scarcity, TooLittleAddressSpaceIsSaid) {
  constexpr rlim_t kMiB = 1U << 20U;
  int failures = 0;
  for (rlim_t most = 8 * kMiB; most < 64 * kMiB; most += 2 * kMiB) {
    const RunResult result = RunInChild([&] {
      const rlimit limit{most, most};
      return setrlimit(RLIMIT_AS, &limit) == 0 ? Execute(kSlots) : kCannotFail;
    });
    if (result.status == 0) continue;
    ++failures;
    EXPECT_THAT(result.status, AnyOf(1, 127)) << most;
    EXPECT_THAT(result.err, AnyOf(HasSubstr("memory"), HasSubstr("map segment"))) << most;
  }
  EXPECT_GT(failures, 0);
  EXPECT_LT(failures, 20);
}

TEST(Scarcity, AClassThatNeedsMoreMemoryNamesIt) {
  const vtq::TemporaryDirectory capture;
  std::filesystem::create_directories(capture / "proc/bus/pci");
  std::filesystem::create_directory(capture / "commands");
  capture.Write("proc/bus/pci/devices", "");
  std::string listing;
  for (int line = 0; line < 6000000; ++line) listing += "00:\n";
  capture.Write("commands/lspci -xxxx", listing);
  capture.Write("commands/lspci -vvv", "");
  const RunResult result = RunPciinfo(
      {"instances", "QZMSG_PCIRawData", "--root", capture.GetPath(), "--memory-limit", "128"});
  if (result.err.find("needs namespaces") != std::string::npos) GTEST_SKIP() << result.err;
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("QZMSG_PCIRawData: "));
  EXPECT_THAT(result.err, HasSubstr("memory"));
  EXPECT_THAT(result.err, Not(HasSubstr("no reason was given")));
}

TEST(Scarcity, APartOfTheProgramThatNeedsMoreMemoryNamesIt) {
  const RunResult result = RunInChild([&] {
    const rlimit limit{rlim_t{40} << 20U, rlim_t{40} << 20U};
    setrlimit(RLIMIT_AS, &limit);
    return Execute({PCIINFO_PROGRAM, "instances", "--format", "cim-xml", "--only-plugin",
                    FakePluginFile("fixed")});
  });
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("not enough memory"));
  EXPECT_THAT(result.err, Not(HasSubstr("install it again")));
}

#endif

}  // namespace
