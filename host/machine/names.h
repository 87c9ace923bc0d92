// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "host/machine/machine_model.h"

namespace pciinfo {

/// Returns a text of the firmware or of a names file as a name: printable, without surrounding or
/// repeated blanks; empty for texts that stand for a missing name ("To Be Filled By O.E.M.").
std::string NameIn(std::string_view text);

/// Returns the short form of a maker's name: what stands in brackets at the end ("AMD/ATI"), else
/// the name without its legal form and line of business ("Intel" for "Intel Corporation").
std::string ShortMaker(std::string_view name);

/// Joins a maker and a product that may begin with the maker's name already.
std::string MakerAndProduct(const std::string& maker, const std::string& product);

/// Returns "10de:2231", with question marks for unknown IDs.
std::string IdText(const MachineFunction& function);

/// Returns the name of the class: of the names file, else of the PCI standard.
std::string ClassName(const MachineFunction& function);

/// Returns maker and model; without a model the maker and the IDs. Printable.
std::string MakerAndModel(const MachineFunction& function);

/// Returns the kind of device in a word or two ("audio"); empty for classes without one.
std::string KindWord(const MachineFunction& function);

/// Returns what a function is: maker and model, and the kind of device where the model does not
/// tell; without a model the class and the IDs. Printable.
std::string ModelText(const MachineFunction& function);

}  // namespace pciinfo
