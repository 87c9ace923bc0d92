// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "framework/export.h"

namespace NQZMVTQ20 {

class ICIMNamespace;

/// The key values that identify the computer system of a namespace.
class VTQ_EXPORT TCIMSchemaHelper {
 public:
  /// The CreationClassName of the system ("CIM_ComputerSystem"). Throws TVTQException when
  /// `nameSpace` is null.
  static std::string GetSystemCreationClassName(std::shared_ptr<ICIMNamespace> nameSpace);

  /// The Name of the system: its fully qualified host name if it has one, else its host name; empty
  /// if it has none. A warning in the log says if the domain could not be determined. Throws
  /// TVTQException when `nameSpace` is null.
  static std::string GetSystemName(std::shared_ptr<ICIMNamespace> nameSpace);
};

}  // namespace NQZMVTQ20
