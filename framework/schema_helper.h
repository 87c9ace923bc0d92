#pragma once

#include <memory>
#include <string>

#include "framework/export.h"

namespace NQZMVTQ20 {

class ICIMNamespace;

/// The key values by which a namespace names the computer system that it describes.
class VTQ_EXPORT TCIMSchemaHelper {
 public:
  /// The CreationClassName of the system ("CIM_ComputerSystem"). Throws TVTQException when
  /// `nameSpace` is null.
  static std::string GetSystemCreationClassName(std::shared_ptr<ICIMNamespace> nameSpace);

  /// The Name of the system: its fully qualified host name where it has one, else its host name;
  /// empty when it has none. A warning in the log tells when its domain could not be looked for.
  /// Throws TVTQException when `nameSpace` is null.
  static std::string GetSystemName(std::shared_ptr<ICIMNamespace> nameSpace);
};

}  // namespace NQZMVTQ20
