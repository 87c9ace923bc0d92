// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace pciinfo {

/// Escapes the unsafe characters (see IsUnsafe) that the JSON library leaves as they are: DEL and
/// those beyond ASCII. `json` must be what the library has written; its meaning stays the same.
std::string SafeJson(std::string json);

}  // namespace pciinfo
