// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "framework/cim_class.h"
#include "framework/cim_value.h"
#include "topology/snapshot.h"

namespace topology {

inline constexpr const char* kFunctionClass = "VTQ_PCIFunction";
inline constexpr const char* kDetailsClass = "VTQ_PCIFunctionDetails";
inline constexpr const char* kSlotClass = "VTQ_PCISlot";
inline constexpr const char* kFunctionInSlotClass = "VTQ_PCIFunctionInSlot";
inline constexpr const char* kSharedPortClass = "VTQ_PCISharedPort";

/// The properties of one instance. What is not known is not in the map.
using Properties = std::map<std::string, NQZMVTQ20::TCIMValue>;

/// Create and commit the instances of functions.
void CommitFunctions(const Snapshot& snapshot, NQZMVTQ20::ICIMClass& cimClass);
/// Reads more of the kernel's files, see details_reader.h.
void CommitDetails(const Snapshot& snapshot, NQZMVTQ20::ICIMClass& cimClass);

/// The instances of the other classes, in the order in which they are committed. `nameSpace` is the
/// name that references hold.
std::vector<Properties> SlotInstances(const Snapshot& snapshot);
std::vector<Properties> FunctionInSlotInstances(const Snapshot& snapshot,
                                                const std::string& nameSpace);
std::vector<Properties> SharedPortInstances(const Snapshot& snapshot);

}  // namespace topology
