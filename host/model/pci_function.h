#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/model/address.h"
#include "runtime/repository.h"

namespace pciinfo {

/// One PCI function as the views show it.
struct PciFunction {
  std::string path;  ///< of its instance
  std::string kind;  ///< "device" or "bridge"
  /// No value when the location is not one that can be read.
  std::optional<PciAddress> address;
  std::string location;  ///< as the plug-in gives it
  std::optional<unsigned> vendorId;
  std::optional<unsigned> deviceId;
  std::optional<unsigned> revision;
  std::optional<unsigned> classCode;  ///< the base class
  std::optional<unsigned> subclass;
  std::optional<unsigned> programmingInterface;
  std::optional<unsigned> subsystemVendorId;  ///< never of a bridge
  std::optional<unsigned> subsystemId;        ///< never of a bridge
  std::string description;
};

/// The function that an instance of QZMSG_PCIDevice or QZMSG_PCIBridge describes.
PciFunction ReadFunction(const vtq::Class& cimClass, const vtq::Instance& instance);

/// All functions of a repository, sorted by address.
std::vector<PciFunction> ReadFunctions(const vtq::Namespace& repository);

/// Sorts by address; functions without one come last, in the order in which they were.
void SortByAddress(std::vector<PciFunction>& functions);

/// "00:1f.3", or the location where there is no address.
std::string AddressText(const PciFunction& function);

/// "8086:1234", with question marks for what is not known.
std::string IdText(const PciFunction& function);

}  // namespace pciinfo
