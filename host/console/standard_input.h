// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>

namespace pciinfo {

/// Reads the rest of standard input. Throws std::runtime_error when it cannot be read, or holds
/// more than `most` bytes (0: any number).
std::string ReadStandardInput(std::uint64_t most);

/// Puts a file that holds `text` in the place of standard input. Throws std::runtime_error.
void ReplaceStandardInput(const std::string& text);

/// Answers where in standard input this program begins to read, so that a worker can do that again
/// after another one has. What cannot be read twice, a pipe for example, is replaced by a file of
/// the same content. Throws like the functions above.
off_t MakeStandardInputRepeatable(std::uint64_t most);

}  // namespace pciinfo
