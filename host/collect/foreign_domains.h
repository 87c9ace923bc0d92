// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>

namespace pciinfo {

/// Returns a function that maps a function's path below /proc/bus/pci ("03/1f.2") to its PCI domain
/// ("10000") if /sys/bus/pci/devices has it in another domain than 0000 only, else to an empty
/// text. It reads the names in `devices` at its first call.
std::function<std::string(const std::string&)> MakeDomainLookup(
    const std::string& devices = "/sys/bus/pci/devices");

}  // namespace pciinfo
