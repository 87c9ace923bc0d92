// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace pciinfo {

/// Returns the name that `word` is most likely a misspelling of: one that begins with it, or the
/// nearest that is at most two letters away (inserted, left out or replaced). Empty if there is
/// none.
std::string NearestOf(const std::string& word, const std::vector<std::string>& names);

}  // namespace pciinfo
