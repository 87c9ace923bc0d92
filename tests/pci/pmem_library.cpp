// A physical-memory access library for the tests of its loader. Each entry point answers a number
// of its own. PMEM_WITHOUT_READ_AND_SEARCH makes one that lacks two of them.

#include "framework/export.h"

// Nobody defines it: a library with this call can only be loaded when its functions are bound as
// late as at their first call.
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
