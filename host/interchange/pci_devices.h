// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/check/machine_facts.h"

namespace pciinfo {

/// A PCI device: the functions of one device number, and the virtual functions of these. Has at
/// least one function.
struct PciDevice {
  std::string name;                    ///< its address without the function: "0000:01:00"
  std::vector<std::size_t> functions;  ///< their places in the model, sorted by address
};

/// Gathers all functions of a machine into devices, sorted by address.
std::vector<PciDevice> DevicesOf(const MachineModel& machine);

/// What is known of a device as a product. Texts are printable; what is not known is empty.
struct Product {
  std::string manufacturer;
  std::string model;
  std::string partNumber;
  std::string serialNumber;
  std::string firmware;  ///< empty if its functions have different versions
};

Product ProductOf(const PciDevice& device, const MachineFacts& facts);

}  // namespace pciinfo
