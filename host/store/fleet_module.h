// SPDX-License-Identifier: Apache-2.0
#pragma once

// `store` and `fleet` need the libraries of two database systems. Their code is in a module of its
// own, which few machines of a fleet need, so it has a package of its own as well.

#include "framework/export.h"
#include "host/store/machine_store.h"

namespace pciinfo {

inline constexpr const char* kFleetModule = "libpciinfo-fleet.so";

/// Returns the function `name` of the module, which the first call loads. Throws
/// std::runtime_error, which says what to install, when there is no such module.
void* FindInFleetModule(const char* name);

}  // namespace pciinfo

extern "C" {
// The caller owns the returned object. Throws like OpenMachineStore.
VTQ_EXPORT pciinfo::MachineStore* PciinfoOpenMachineStore(const pciinfo::StoreSettings& settings);
}
