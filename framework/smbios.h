#pragma once

#include "framework/export.h"
#include "framework/status_code.h"

namespace NQZMVTQ20 {

class TPluginManagerProvider;

// Access to the firmware's SMBIOS structures, in table order (DSP0134). A handle holds its own
// copy of the table and a position in it; it is used on one thread. No function throws, and none
// ever writes past what its arguments allow.
//
// Every function answers kInvalidArgument for a null pointer (the provider excepted) and
// otherwise the codes that it lists.

/// Room that smBiosGetVersion needs, terminating zero included.
inline constexpr int kSmBiosVersionSize = 16;

/// Reads and checks the entry point and the table, and stores a new handle in `*handle`, which the
/// caller gives back with smBiosClose. `provider` may be null. Otherwise `*handle` becomes null:
///   kNotFound      this machine has no SMBIOS tables
///   kAccessDenied  they exist, but this user may not read them
///   kCorruptData   the entry point has no known anchor, a wrong checksum or a wrong length
///   kFailure       any other error while reading
VTQ_EXPORT TVTQStatusCode::EVTQStatusCode smBiosLoad(const TPluginManagerProvider* provider,
                                                     void** handle) noexcept;

/// Writes the SMBIOS version as "MAJOR.MINOR", both decimal, into `version`, which has room for
/// kSmBiosVersionSize characters.
VTQ_EXPORT TVTQStatusCode::EVTQStatusCode smBiosGetVersion(void* handle, char* version) noexcept;

/// Goes to the first structure of `type` (0 to 255) and copies it into `buffer`: the formatted
/// area, the string set and the two zero bytes that end it.
///
/// `*size` is the capacity of `buffer` in bytes. It is never changed, so one size word serves a
/// whole walk.
///   kNotFound        the table holds no such structure
///   kBufferTooSmall  the structure does not fit; nothing is copied, and smBiosGetNext goes on
///                    behind it
VTQ_EXPORT TVTQStatusCode::EVTQStatusCode smBiosGetFirst(void* handle, int type, void* buffer,
                                                         int* size) noexcept;

/// The same for the next structure of the type that smBiosGetFirst was asked for. A table that is
/// cut short, or that holds a structure with a length below 4, ends there.
VTQ_EXPORT TVTQStatusCode::EVTQStatusCode smBiosGetNext(void* handle, void* buffer,
                                                        int* size) noexcept;

/// Frees the handle and sets `*handle` to null.
VTQ_EXPORT TVTQStatusCode::EVTQStatusCode smBiosClose(void** handle) noexcept;

}  // namespace NQZMVTQ20
