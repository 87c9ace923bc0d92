// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "topology/error_status.h"
#include "topology/resizable_regions.h"
#include "topology/virtual_functions.h"

namespace topology {

/// What the extended capabilities say. Only PCI Express has them.
struct ExtendedFacts {
  bool known = false;  ///< they could be read
  std::optional<std::uint64_t> serialNumber;
  /// Of the alternative routing-ID capability: the number of the device's next function, or 0.
  std::optional<std::uint8_t> nextFunction;
  std::optional<VirtualFunctions> virtualFunctions;
  std::optional<ErrorStatus> errors;
  std::vector<ResizableRegion> resizable;
};

/// Decodes the whole configuration space of a function.
ExtendedFacts DecodeExtended(const ConfigSpace& config);

/// "00-11-22-33-44-55-66-77", the device serial number with its highest byte first.
std::string SerialText(std::uint64_t number);

}  // namespace topology
