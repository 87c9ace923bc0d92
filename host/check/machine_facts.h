// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/machine/function_details.h"
#include "host/machine/machine_model.h"

namespace pciinfo {

/// Errors of one gravity that the kernel has counted.
struct ErrorCount {
  std::optional<std::uint64_t> total;  ///< not set: the kernel does not count them
  std::vector<std::string> kinds;      ///< "BadTLP 3", for those that have occurred
};

/// What is known of a function beside the model. What is not known is empty.
struct FunctionFacts {
  ErrorCount corrected;
  ErrorCount nonFatal;
  ErrorCount fatal;
  std::string powerState;            ///< "D0"
  std::vector<std::string> modules;  ///< that could drive it
  std::vector<Region> regions;
  std::string serialNumber;  ///< of the device's configuration space: "00-1b-21-ff-ff-a0-b1-c2"
  // Of the vital product data:
  std::string productName;
  std::string partNumber;
  std::string productSerialNumber;
  std::vector<SystemDevice> systemDevices;
};

/// The input of the checks of the machine.
struct MachineFacts {
  MachineModel machine;
  std::vector<FunctionFacts> functions;  ///< one for each function of the machine
};

/// Reads the facts from the instances of MachineClasses() and of the class of details.
MachineFacts ReadMachineFacts(const vtq::Namespace& repository);

}  // namespace pciinfo
