#include "host/large_pages.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <string>

namespace pciinfo {
namespace {

/// Runs `check` in a process of its own, whose memory is not used any more afterwards.
bool HoldsInNewProcess(bool (*check)()) {
  const pid_t child = fork();
  if (child == 0) _exit(check() ? 0 : 1);
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

#ifndef PCIINFO_SANITIZED  // sanitizers bring memory of their own
/// Whether the kernel takes the advice at all.
bool HasLargePages() {
  constexpr std::size_t kSize = 4U << 20U;
  void* const room =
      mmap(nullptr, kSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  const bool isTaken = madvise(room, kSize, MADV_HUGEPAGE) == 0;
  munmap(room, kSize);
  return isTaken;
}

/// Whether memory of this process is marked for large pages.
bool IsMarked() {
  std::ifstream file("/proc/self/smaps");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("VmFlags:") && line.find(" hg") != std::string::npos) return true;
  }
  return false;
}

TEST(LargePages, TheHeapIsMarkedForThemWhereTheSystemHasThem) {
  EXPECT_EQ(HoldsInNewProcess([] {
              UseLargePages();
              return IsMarked();
            }),
            HasLargePages());
}
#endif

TEST(LargePages, MemoryOfAllSizesCanBeTakenAndGivenBack) {
  EXPECT_TRUE(HoldsInNewProcess([] {
    UseLargePages();
    for (std::size_t size = 16; size <= std::size_t{64} << 20U; size *= 2) {
      auto* const block = static_cast<char*>(std::calloc(size, 1));
      if (block == nullptr || block[0] != 0 || block[size - 1] != 0) return false;
      block[size - 1] = 1;
      std::free(block);
    }
    return true;
  }));
}

TEST(LargePages, CanBeAskedForAgain) {
  EXPECT_TRUE(HoldsInNewProcess([] {
    UseLargePages();
    UseLargePages();
    return true;
  }));
}

}  // namespace
}  // namespace pciinfo
