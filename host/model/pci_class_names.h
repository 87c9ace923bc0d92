// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

namespace pciinfo {

/// Returns the name of a base class from the PCI Code and ID Assignment Specification, or the
/// number if it has none.
std::string BaseClassText(unsigned baseClass);

/// The class code of a function; a part that is unknown has no value.
struct ClassCode {
  std::optional<unsigned> baseClass;
  std::optional<unsigned> subclass;
  std::optional<unsigned> programmingInterface;
};

/// Returns the most specific name of a class code: of the programming interface, else of the
/// subclass, else of the base class. Empty if the base class is unknown.
std::string ClassText(const ClassCode& code);

}  // namespace pciinfo
