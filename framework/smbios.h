// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/export.h"
#include "framework/status_code.h"

namespace NQZMVTQ20 {

class TPluginManagerProvider;

// Access to the firmware's SMBIOS structures, in table order (DSP0134). A handle has its own copy
// of the table and a position in it, and is used on one thread. No function throws or writes past
// the end of a buffer.
//
// Every function returns kInvalidArgument for a null pointer (except the provider), else one of the
// codes that it lists.

/// Size of the buffer for smBiosGetVersion, including the terminating zero.
inline constexpr int kSmBiosVersionSize = 16;

/// Reads and checks the entry point and the table, and stores a new handle in `*handle`, which the
/// caller gives back with smBiosClose. `provider` may be null. Otherwise `*handle` becomes null:
///   kNotFound      this machine has no SMBIOS tables
///   kAccessDenied  they exist, but this user may not read them
///   kCorruptData   the entry point has no known anchor, a wrong checksum or a wrong length
///   kFailure       any other error while reading
VTQ_EXPORT TVTQStatusCode::EVTQStatusCode smBiosLoad(const TPluginManagerProvider* provider,
                                                     void** handle) noexcept;

/// Writes the SMBIOS version as "MAJOR.MINOR", both decimal, to `version`, a buffer of
/// kSmBiosVersionSize characters.
VTQ_EXPORT TVTQStatusCode::EVTQStatusCode smBiosGetVersion(void* handle, char* version) noexcept;

/// Copies the first structure of `type` (0 to 255) to `buffer`: the formatted area, the string set
/// and the two zero bytes that end it.
///
/// `*size` is the capacity of `buffer` in bytes. It is never changed, so one size word serves a
/// whole walk.
///   kNotFound        the table holds no such structure
///   kBufferTooSmall  the structure does not fit; nothing is copied, and smBiosGetNext goes on
///                    behind it
VTQ_EXPORT TVTQStatusCode::EVTQStatusCode smBiosGetFirst(void* handle, int type, void* buffer,
                                                         int* size) noexcept;

/// Copies the next structure of the type that was passed to smBiosGetFirst. A truncated table ends
/// at its last complete structure, and a table ends before a structure with a length below 4.
VTQ_EXPORT TVTQStatusCode::EVTQStatusCode smBiosGetNext(void* handle, void* buffer,
                                                        int* size) noexcept;

/// Frees the handle and sets `*handle` to null.
VTQ_EXPORT TVTQStatusCode::EVTQStatusCode smBiosClose(void** handle) noexcept;

}  // namespace NQZMVTQ20
