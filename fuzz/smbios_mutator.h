// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>

namespace fuzz {

/// Changes an input that ends in an SMBIOS table, for LLVMFuzzerCustomMutator. `start` is where the
/// table begins. Mostly, the change keeps structures whole: it changes, copies, moves or removes
/// one, makes its formatted area longer or shorter together with its length byte, or changes its
/// strings. Without this, nearly every changed byte ends the walk at the first structure.
std::size_t MutateTable(std::uint8_t* bytes, std::size_t size, std::size_t most, unsigned seed,
                        std::size_t start);

}  // namespace fuzz
