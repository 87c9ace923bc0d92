// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace topology {

// Files of the kernel that exist and cannot be read. Their facts are unknown, and the log says why:
// one record for each reason, however many files it concerns. A file that does not exist is no
// failure, because kernels and devices differ in what they have.

/// Notes that `file` could not be opened or read. `error` is the value of errno. May be called on
/// several threads at once.
void NoteReadFailure(const std::string& file, int error);

/// Writes what was noted to the framework's log, and forgets it.
void LogReadFailures();

}  // namespace topology
