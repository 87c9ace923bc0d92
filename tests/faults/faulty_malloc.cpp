// SPDX-License-Identifier: Apache-2.0

// Allocations that can fail: all of them, because operator new calls malloc.
#include <atomic>
#include <cerrno>
#include <cstdlib>

#include "tests/faults/fault_plan.h"
#include "tests/faults/live_blocks.h"

// The C library exports its own functions under these names, for programs that replace malloc.
extern "C" void* __libc_malloc(std::size_t size) noexcept;
extern "C" void* __libc_calloc(std::size_t count, std::size_t size) noexcept;
extern "C" void* __libc_realloc(void* block, std::size_t size) noexcept;
extern "C" void __libc_free(void* block) noexcept;

namespace {

std::atomic<long> live{0};

bool HasNoMemory() noexcept {
  if (!MustFail(Call::kAllocate)) return false;
  errno = ENOMEM;
  return true;
}

void* Counted(void* block) noexcept {
  if (block != nullptr) ++live;
  return block;
}

}  // namespace

long LiveBlocks() noexcept { return live; }

#define CALLED_FROM_OUTSIDE extern "C" __attribute__((visibility("default")))

CALLED_FROM_OUTSIDE void* malloc(std::size_t size) noexcept {
  return HasNoMemory() ? nullptr : Counted(__libc_malloc(size));
}

CALLED_FROM_OUTSIDE void* calloc(std::size_t count, std::size_t size) noexcept {
  return HasNoMemory() ? nullptr : Counted(__libc_calloc(count, size));
}

CALLED_FROM_OUTSIDE void* realloc(void* block, std::size_t size) noexcept {
  if (HasNoMemory()) return nullptr;
  void* const moved = __libc_realloc(block, size);
  return block == nullptr ? Counted(moved) : moved;
}

CALLED_FROM_OUTSIDE void free(void* block) noexcept {
  if (block != nullptr) --live;
  __libc_free(block);
}
