// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/export.h"
#include "framework/status_code.h"

/// Entry points of the physical-memory access library, and the functions that load and unload it.
/// The collectors do not use them; they are exported for tools that examine a machine with the same
/// library.

/// Null before pmemLoad, and if the library lacks the function. pmemUnLoad does not reset them, so
/// do not use them after it.
extern VTQ_EXPORT void* PMemIsInitialized;
extern VTQ_EXPORT void* PMemOpen;
extern VTQ_EXPORT void* PMemClose;
extern VTQ_EXPORT void* PMemRead;
extern VTQ_EXPORT void* PMemSearch;

/// Loads "../../libpmem.so", relative to the plug-in's directory, and looks up the entry points.
/// Returns 0, or 3 if it cannot be loaded.
VTQ_EXPORT NQZMVTQ20::TVTQStatusCode::EVTQStatusCode pmemLoad();

/// Unloads the library. Returns 3 if it was closed, 0 if closing failed or no library was loaded.
/// These codes are the reverse of pmemLoad's and part of the interface: callers compare with them.
VTQ_EXPORT NQZMVTQ20::TVTQStatusCode::EVTQStatusCode pmemUnLoad();
