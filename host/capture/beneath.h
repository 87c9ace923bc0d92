// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "runtime/file_descriptor.h"

namespace pciinfo {

// Files below a directory that somebody else may be changing: nothing here follows a symbolic link
// or leaves the directory. Paths are relative and without "." and ".."; a result that is not open
// leaves the reason in errno.

/// Opens `path`, and creates it with the flag O_CREAT.
vtq::FileDescriptor OpenBeneath(const vtq::FileDescriptor& directory, const std::string& path,
                                int flags, mode_t mode = 0);

/// The same for kernels before 5.6, which have no call for it: opens each directory on the way.
vtq::FileDescriptor OpenStepByStep(const vtq::FileDescriptor& directory, const std::string& path,
                                   int flags, mode_t mode = 0);

/// Returns the names in a directory, which must be open for reading, without "." and "..". Throws
/// std::system_error.
std::vector<std::string> NamesIn(const vtq::FileDescriptor& directory);

/// Removes all that is in a directory, as far as possible.
void RemoveContent(const vtq::FileDescriptor& directory) noexcept;

/// Whether the entry `name` of a directory is the file or directory that is open as `file`.
bool IsEntry(const vtq::FileDescriptor& directory, const std::string& name,
             const vtq::FileDescriptor& file) noexcept;

}  // namespace pciinfo
