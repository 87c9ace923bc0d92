// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace pciinfo {

/// The keys of an object, from the most to the least reliable; empty keys are not used.
using PairingKeys = std::vector<std::string>;

/// Pairs objects that have the same first key, then those of the rest that have the same second
/// key, and so on. All objects must have the same number of keys. Returns the place in `before` for
/// each object in `after`; nothing for those that only `after` has.
std::vector<std::optional<std::size_t>> PairByKeys(const std::vector<PairingKeys>& before,
                                                   const std::vector<PairingKeys>& after);

}  // namespace pciinfo
