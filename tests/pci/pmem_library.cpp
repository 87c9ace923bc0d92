// SPDX-License-Identifier: Apache-2.0

// A physical-memory access library for the tests of its loader. Each entry point returns a
// different number. With PMEM_WITHOUT_READ_AND_SEARCH, two of them are missing.

#include "framework/export.h"

// Not defined anywhere: the library can be loaded only if the loader binds functions at their first
// call.
void CalledByNobody();

extern "C" {

VTQ_EXPORT int PMemIsInitialized() { return 1; }
VTQ_EXPORT int PMemOpen() { return 2; }
VTQ_EXPORT int PMemClose() { return 3; }
#ifndef PMEM_WITHOUT_READ_AND_SEARCH
VTQ_EXPORT int PMemRead() { return 4; }
VTQ_EXPORT int PMemSearch() { return 5; }
#endif

VTQ_EXPORT void PMemUnusable() { CalledByNobody(); }
}
