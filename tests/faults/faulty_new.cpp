// SPDX-License-Identifier: Apache-2.0

// Allocations by operator new that can fail; for sanitizers, which replace malloc.
#include <atomic>
#include <cstdlib>
#include <new>

#include "tests/faults/fault_plan.h"
#include "tests/faults/live_blocks.h"

namespace {

std::atomic<long> live{0};

void* Allocate(std::size_t size) noexcept {
  void* const block = MustFail(Call::kAllocate) ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (block != nullptr) ++live;
  return block;
}

void* AllocateOrThrow(std::size_t size) {
  if (void* const block = Allocate(size)) return block;
  throw std::bad_alloc();
}

void Free(void* block) noexcept {
  if (block != nullptr) --live;
  std::free(block);
}

}  // namespace

long LiveBlocks() noexcept { return live; }

#define CALLED_FROM_OUTSIDE __attribute__((visibility("default")))

CALLED_FROM_OUTSIDE void* operator new(std::size_t size) { return AllocateOrThrow(size); }
CALLED_FROM_OUTSIDE void* operator new[](std::size_t size) { return AllocateOrThrow(size); }
CALLED_FROM_OUTSIDE void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size);
}
CALLED_FROM_OUTSIDE void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size);
}
CALLED_FROM_OUTSIDE void operator delete(void* block) noexcept { Free(block); }
CALLED_FROM_OUTSIDE void operator delete[](void* block) noexcept { Free(block); }
CALLED_FROM_OUTSIDE void operator delete(void* block, std::size_t) noexcept { Free(block); }
CALLED_FROM_OUTSIDE void operator delete[](void* block, std::size_t) noexcept { Free(block); }
