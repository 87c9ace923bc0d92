// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "host/schema/class_file.h"

namespace pciinfo {

/// The classes that the class file of the plug-in declares.
inline std::vector<vtq::ClassSchema> PciSchema() {
  static const std::vector<vtq::ClassSchema> classes = LoadClasses(PCI_CLASS_FILE);
  return classes;
}

}  // namespace pciinfo
