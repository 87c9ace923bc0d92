// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/cli/options.h"

namespace pciinfo {

/// Adds the arguments and options of `store`. Parsing fills `options`.
void AddStoreOptions(CLI::App& store, Options& options);

}  // namespace pciinfo
