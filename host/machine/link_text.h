// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "host/machine/machine_model.h"

namespace pciinfo {

/// Returns a link in words, "x8 of x16, 8 of 16 GT/s": what it does now, and what it can do at most
/// where that is more. Empty if nothing is known.
std::string LinkText(const Link& link);

/// Returns what a link can do at most, "x16, 16 GT/s", whatever it does now.
std::string MostLinkText(const Link& link);

/// Whether a function is a port whose link leads to the devices below it.
bool LeadsToLink(const MachineFunction& function);

/// Returns the port at the other end of the link above a device; null if it is not known, and for
/// other functions of a device than the first, which share its link.
const MachineFunction* PortOfLink(const MachineFunction& function, const MachineModel& machine);

/// Returns how the link above a device is narrower than both of its ends allow, "x8 of x16"; empty
/// if it is not, or if PortOfLink finds no port. Speeds are not compared, because idle devices
/// lower them to save power.
std::string NarrowLinkText(const MachineFunction& function, const MachineModel& machine);

}  // namespace pciinfo
