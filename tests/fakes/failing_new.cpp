// SPDX-License-Identifier: Apache-2.0
#include "tests/fakes/failing_new.h"

#include <cstdlib>
#include <new>

namespace {

std::size_t failingSize = 0;

}  // namespace

FailingNew::FailingNew(std::size_t size) { failingSize = size; }
FailingNew::~FailingNew() { failingSize = 0; }

// These replace the operators of the C++ library in the whole program.
void* operator new(std::size_t size) {
  if (failingSize != 0 && size == failingSize) throw std::bad_alloc();
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
