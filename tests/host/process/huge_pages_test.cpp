// SPDX-License-Identifier: Apache-2.0

// Each test in a child process of its own: the heap keeps what it has got.

#include "host/process/huge_pages.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "tests/host/run_program.h"

namespace pciinfo {
namespace {

#ifndef PCIINFO_SANITIZED  // AddressSanitizer has a heap of its own, which is left alone
bool HasKernelHugePages() { return std::filesystem::exists("/sys/kernel/mm/transparent_hugepage"); }

/// The size of the heap that is advised to be in huge pages, in KiB.
unsigned long AdvisedKiB() {
  std::ifstream maps("/proc/self/smaps");
  unsigned long size = 0;
  unsigned long advised = 0;
  bool isHeap = false;
  for (std::string line; std::getline(maps, line);) {
    std::istringstream words(line);
    std::string key;
    words >> key;
    if (key.find('-') != std::string::npos) isHeap = line.ends_with("[heap]");
    if (key == "Size:") words >> size;
    if (isHeap && key == "VmFlags:" && line.find(" hg") != std::string::npos) advised += size;
  }
  return advised;
}

/// What a child process that has asked for huge pages answers.
template <class Answer>
int InChildWithHugePages(const Answer& answer) {
  return RunInChild([&] {
           UseHugePages();
           return answer() ? 0 : 1;
         })
      .status;
}

TEST(HugePages, AreAdvisedForMostOfTheReservedHeap) {
  const unsigned long least = HasKernelHugePages() ? 60 << 10 : 0;
  EXPECT_EQ(InChildWithHugePages([least] { return AdvisedKiB() >= least; }), 0);
}

TEST(HugePages, TakeNoMemoryBeforeItIsUsed) {
  EXPECT_EQ(InChildWithHugePages([] {
              rusage usage{};
              getrusage(RUSAGE_SELF, &usage);
              return usage.ru_maxrss < 60 << 10;
            }),
            0);
}
#endif

TEST(HugePages, AreNotUsedWhereAddressesAreFew) {
  const RunResult child = RunInChild([] {
    rlimit few{512U << 20U, 512U << 20U};
    if (setrlimit(RLIMIT_AS, &few) != 0) return 2;
    const void* const before = sbrk(0);
    UseHugePages();
    return sbrk(0) == before ? 0 : 1;
  });
  EXPECT_EQ(child.status, 0);
}

}  // namespace
}  // namespace pciinfo
