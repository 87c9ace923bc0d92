#pragma once

#include <string>
#include <vector>

#include "runtime/class_schema.h"

namespace pciinfo {

/// The namespace that the classes are declared in.
inline constexpr const char* kNamespaceName = "root/cimv2";

/// The classes of PCI functions, slots and the board, in the order in which they are collected and
/// printed when nobody asks for another one.
std::vector<vtq::ClassSchema> PciSchema();

}  // namespace pciinfo
