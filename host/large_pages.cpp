#include "host/large_pages.h"

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace pciinfo {

namespace {

/// 0 where the block is not in the heap that ends there.
std::size_t BytesUntil(const void* end, const void* block) noexcept {
  const auto last = reinterpret_cast<std::uintptr_t>(end);
  const auto first = reinterpret_cast<std::uintptr_t>(block);
  return first < last ? last - first : 0;
}

}  // namespace

void UseLargePages() noexcept {
  constexpr std::size_t kLargePage = 2U << 20U;
  constexpr int kRoom = 32 << 20;
  constexpr int kUsualRoom = 1 << 20;
  constexpr int kOwnMapping = 8 << 20;  // blocks of this size grow without being copied
  mallopt(M_MMAP_THRESHOLD, kOwnMapping);
  mallopt(M_TRIM_THRESHOLD, 4 * kRoom);  // or the room would go back at once
  mallopt(M_TOP_PAD, kRoom);
  void* const first =
      std::malloc(kUsualRoom);  // more than is there: the heap grows by all the room
  mallopt(M_TOP_PAD, kUsualRoom);
  void* begin = first;
  std::size_t space = BytesUntil(sbrk(0), first);
  if (first != nullptr && std::align(kLargePage, kLargePage, begin, space) != nullptr) {
    madvise(begin, space / kLargePage * kLargePage, MADV_HUGEPAGE);
  }
  std::free(first);
}

}  // namespace pciinfo
