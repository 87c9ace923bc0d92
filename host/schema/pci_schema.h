#pragma once

#include <string>
#include <vector>

#include "runtime/class_schema.h"

namespace pciinfo {

/// The namespace of the classes.
inline constexpr const char* kNamespaceName = "root/cimv2";

/// Returns the classes of PCI functions, slots and the board, in the default order of collecting
/// and printing.
std::vector<vtq::ClassSchema> PciSchema();

}  // namespace pciinfo
