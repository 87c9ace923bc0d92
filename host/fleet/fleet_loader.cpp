// SPDX-License-Identifier: Apache-2.0
#include "host/fleet/fleet_reader.h"
#include "host/store/fleet_module.h"
#include "host/store/target.h"

namespace pciinfo {

std::unique_ptr<FleetDatabase> OpenFleet(const std::string& target) {
  CheckTarget(target);
  const auto open =
      reinterpret_cast<decltype(&PciinfoOpenFleet)>(FindInFleetModule("PciinfoOpenFleet"));
  return std::unique_ptr<FleetDatabase>(open(target));
}

}  // namespace pciinfo
