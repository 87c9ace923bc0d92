#include "host/large_pages.h"

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>

namespace pciinfo {

void UseLargePages() noexcept {
  constexpr std::uintptr_t kLargePage = 2U << 20U;
  constexpr int kRoom = 32 << 20;
  constexpr int kUsualRoom = 1 << 20;
  constexpr int kOwnMapping = 8 << 20;  // blocks of this size grow without being copied
  mallopt(M_MMAP_THRESHOLD, kOwnMapping);
  mallopt(M_TRIM_THRESHOLD, 4 * kRoom);  // or the room would go back at once
  mallopt(M_TOP_PAD, kRoom);
  void* const first =
      std::malloc(kUsualRoom);  // more than is there: the heap grows by all the room
  mallopt(M_TOP_PAD, kUsualRoom);
  const auto begin = (reinterpret_cast<std::uintptr_t>(first) + kLargePage - 1) / kLargePage;
  const auto end = reinterpret_cast<std::uintptr_t>(sbrk(0)) / kLargePage;
  if (first != nullptr && begin < end) {
    madvise(reinterpret_cast<void*>(begin * kLargePage), (end - begin) * kLargePage, MADV_HUGEPAGE);
  }
  std::free(first);
}

}  // namespace pciinfo
