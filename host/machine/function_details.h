// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/machine/property_reader.h"
#include "host/machine/system_device.h"
#include "host/model/address.h"
#include "runtime/repository.h"

namespace pciinfo {

/// A region of addresses of a function.
struct Region {
  std::uint64_t number = 0;  ///< of the base address; 6 is the expansion ROM
  std::uint64_t start = 0;
  std::uint64_t size = 0;  ///< in bytes
  std::string kind;        ///< "memory", "I/O" or "expansion ROM"
  bool isPrefetchable = false;
  bool isWide = false;  ///< the base address has 64 bits
};

/// The class of the details of functions; ReadMachine does not need it.
inline constexpr const char* kDetailsClass = "VTQ_PCIFunctionDetails";

/// The details of one function.
struct FunctionDetails {
  std::shared_ptr<vtq::Class> cimClass;  ///< null if nothing is known
  std::shared_ptr<vtq::Instance> instance;
  std::vector<Region> regions;
};

/// Reads the regions of an instance of that class.
std::vector<Region> ReadRegions(const PropertyReader& reader, const vtq::Instance& instance);

/// Reads the system's devices of an instance of that class.
std::vector<SystemDevice> ReadSystemDevices(const PropertyReader& reader,
                                            const vtq::Instance& instance);

/// Reads the details of a function.
FunctionDetails ReadDetails(const vtq::Namespace& repository, const DomainAddress& address);

/// Returns the functions that have a network interface, a block device or another kernel device of
/// that name.
std::vector<DomainAddress> FunctionsWithDevice(const vtq::Namespace& repository,
                                               const std::string& name);

}  // namespace pciinfo
