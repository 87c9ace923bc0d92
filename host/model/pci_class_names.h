#pragma once

#include <string>

#include "host/model/pci_function.h"

namespace pciinfo {

/// The base class in words, as the PCI Code and ID Assignment Specification names it; the number
/// for one that it does not name.
std::string BaseClassText(unsigned baseClass);

/// The most that a function's class code says in words: programming interface, else subclass, else
/// base class. Empty where the base class is not known.
std::string ClassText(const PciFunction& function);

}  // namespace pciinfo
