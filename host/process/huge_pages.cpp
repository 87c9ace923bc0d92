// SPDX-License-Identifier: Apache-2.0
#include "host/process/huge_pages.h"

#include <malloc.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace pciinfo {
namespace {

constexpr std::size_t kReserved = 64U << 20U;
constexpr std::size_t kHugePage = 2U << 20U;

/// The reserved addresses count as memory of the process, though nothing is in them.
bool HasPlentyOfAddresses() noexcept {
  constexpr rlim_t kPlenty = 1U << 30U;
  rlimit limit{};
  return getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur >= kPlenty;
}

std::uintptr_t HeapEnd() noexcept { return reinterpret_cast<std::uintptr_t>(sbrk(0)); }

/// Whether the block is in the heap that ends where sbrk says; other blocks are mappings of their
/// own, which end with their release.
bool IsInHeap(const void* block) noexcept {
  const auto begin = reinterpret_cast<std::uintptr_t>(block);
  return begin < HeapEnd() && HeapEnd() - begin < 2 * kReserved;
}

void AdviseHugePages(void* block) noexcept {
  std::size_t space = kReserved;
  if (std::align(kHugePage, kHugePage, block, space) == nullptr) return;
  madvise(block, space / kHugePage * kHugePage, MADV_HUGEPAGE);
}

/// Moves the end of the heap to one page before a huge page begins. Where the heap grows, the
/// allocator writes a header before the new part can be advised; that page takes the header.
/// Nothing is written to the skipped addresses, so they cost no memory.
void SkipToHugePage() noexcept {
  constexpr std::size_t kPage = 4096;
  sbrk(static_cast<std::intptr_t>(kHugePage - (HeapEnd() + kPage) % kHugePage));
}

}  // namespace

// An inventory of some thousand functions takes 15 MiB in small blocks. In pages of 4 KiB each
// first touch enters the kernel, which costs a fifth of the time of a view. So the heap grows once,
// by addresses without memory behind them, keeps them, and is advised as a whole: advice given
// later would not reach what the heap grows by. The threads that read files share this heap: each
// would begin one of its own, in pages of 4 KiB.
void UseHugePages() noexcept {
  if (!HasPlentyOfAddresses()) return;
  constexpr int kOwnMapping = 2 * static_cast<int>(kReserved);
  constexpr int kUsualOwnMapping = 8 << 20;
  mallopt(M_MMAP_THRESHOLD, kOwnMapping);
  mallopt(M_TRIM_THRESHOLD, kOwnMapping);
  mallopt(M_ARENA_MAX, 1);
  SkipToHugePage();
  void* const reserved = std::malloc(kReserved);
  if (reserved != nullptr && IsInHeap(reserved)) AdviseHugePages(reserved);
  std::free(reserved);
  mallopt(M_MMAP_THRESHOLD, kUsualOwnMapping);
}

}  // namespace pciinfo
