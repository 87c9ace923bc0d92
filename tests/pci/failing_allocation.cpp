// SPDX-License-Identifier: Apache-2.0
#include "tests/pci/failing_allocation.h"

#include <new>

namespace {

bool failing = false;

}  // namespace

FailingAllocation::FailingAllocation() { failing = true; }
FailingAllocation::~FailingAllocation() { failing = false; }

// Replaces the operator of the C++ library in the whole program.
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  if (failing) return nullptr;
  try {
    return ::operator new[](size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
