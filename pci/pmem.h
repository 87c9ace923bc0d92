#pragma once

#include "framework/export.h"
#include "framework/status_code.h"

/// Entry points of the physical-memory access library, and the functions that load and unload it.
/// The collectors need none of it; it is there for tools that examine a machine through the same
/// library.

/// Null until pmemLoad, and where the library lacks one. pmemUnLoad leaves them as they are: what
/// they point to is gone then.
extern VTQ_EXPORT void* PMemIsInitialized;
extern VTQ_EXPORT void* PMemOpen;
extern VTQ_EXPORT void* PMemClose;
extern VTQ_EXPORT void* PMemRead;
extern VTQ_EXPORT void* PMemSearch;

/// Loads "../../libpmem.so", as seen from the plug-in's directory, and looks up the entry points:
/// 0, or 3 when it cannot be loaded.
VTQ_EXPORT NQZMVTQ20::TVTQStatusCode::EVTQStatusCode pmemLoad();

/// Unloads the library: 3 when it was closed, 0 when closing failed (none loaded included). This is
/// the reverse of pmemLoad's codes, and part of the interface: callers compare with these values.
VTQ_EXPORT NQZMVTQ20::TVTQStatusCode::EVTQStatusCode pmemUnLoad();
