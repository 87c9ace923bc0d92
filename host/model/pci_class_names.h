// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "host/model/pci_function.h"

namespace pciinfo {

/// Returns the name of a base class from the PCI Code and ID Assignment Specification, or the
/// number if it has none.
std::string BaseClassText(unsigned baseClass);

/// Returns the most specific name of a function's class code: of the programming interface, else of
/// the subclass, else of the base class. Empty if the base class is unknown.
std::string ClassText(const PciFunction& function);

}  // namespace pciinfo
