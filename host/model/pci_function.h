// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/model/address.h"
#include "runtime/repository.h"

namespace pciinfo {

/// One PCI function as the views show it.
struct PciFunction {
  std::string path;     ///< of its instance
  std::string kind;     ///< "device" or "bridge"
  unsigned domain = 0;  ///< the classes of the inventory know domain 0 only
  /// No value if the location cannot be parsed.
  std::optional<PciAddress> address;
  std::string location;  ///< as the plug-in published it
  std::optional<unsigned> vendorId;
  std::optional<unsigned> deviceId;
  std::optional<unsigned> revision;
  std::optional<unsigned> classCode;  ///< the base class
  std::optional<unsigned> subclass;
  std::optional<unsigned> programmingInterface;
  std::optional<unsigned> subsystemVendorId;  ///< not set for bridges
  std::optional<unsigned> subsystemId;        ///< not set for bridges
  std::string description;
};

/// Reads a function from an instance of QZMSG_PCIDevice or QZMSG_PCIBridge.
PciFunction ReadFunction(const vtq::Class& cimClass, const vtq::Instance& instance);

/// Reads all functions of a repository, sorted by address.
std::vector<PciFunction> ReadFunctions(const vtq::Namespace& repository);

/// Sorts by address; functions without one come last, in their original order.
void SortByAddress(std::vector<PciFunction>& functions);

/// Returns "00:1f.3", or the location if there is no address.
std::string AddressText(const PciFunction& function);

/// Returns "8086:1234", with question marks for unknown IDs.
std::string IdText(const PciFunction& function);

}  // namespace pciinfo
