// SPDX-License-Identifier: Apache-2.0
#pragma once

// The part of `fleet` that needs the libraries of two database systems; it is in the module of
// host/store/fleet_module.h.

#include <memory>
#include <string>

#include "host/fleet/fleet_database.h"

namespace pciinfo {

/// OpenFleet for a target that CheckTarget accepts.
std::unique_ptr<FleetDatabase> OpenFleetReader(const std::string& target);

}  // namespace pciinfo

extern "C" {
// The caller owns the returned object. Throws like OpenFleet.
VTQ_EXPORT pciinfo::FleetDatabase* PciinfoOpenFleet(const std::string& target);
}
