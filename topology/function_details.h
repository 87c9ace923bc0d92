// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "topology/error_counters.h"
#include "topology/extended_facts.h"
#include "topology/regions.h"
#include "topology/system_names.h"
#include "topology/vital_product_data.h"

namespace topology {

/// Everything about a function that the list of functions does not tell. It takes some twenty files
/// a function, so it is read only for those who ask for it.
struct FunctionDetails {
  std::optional<unsigned> irq;  ///< of INTx, as the kernel numbers it
  ExtendedFacts extended;
  /// Why the extended capabilities are not known; empty: they are known.
  std::string extendedUnknownBecause;

  std::vector<Region> regions;
  std::optional<std::uint64_t> iommuGroup;
  std::string powerState;  ///< as the kernel names it ("D0"); empty: unknown
  std::optional<std::uint64_t> enableCount;
  std::optional<std::uint64_t> firmwareIndex;  ///< of the onboard device that the firmware names
  std::string firmwarePath;                    ///< of its ACPI node; empty: none
  SystemNames names;

  std::optional<ErrorCounters> correctable;
  std::optional<ErrorCounters> nonFatal;
  std::optional<ErrorCounters> fatal;

  std::optional<VitalProductData> vitalProductData;
  /// Why there is none; empty: the function has no such capability.
  std::string noVitalProductDataBecause;

  std::optional<std::vector<std::string>> modules;  ///< that could drive it; nothing: unknown
};

}  // namespace topology
