// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "framework/qualifier_map.h"

namespace NQZMVTQ20 {

class ICIMClass;

/// A namespace of CIM classes. Owned by the framework; all calls come on one thread.
class ICIMNamespace {
 public:
  virtual ~ICIMNamespace() = default;

  /// The name without a leading slash, for example "root/cimv2".
  virtual std::string GetName(const TQualifierMap& qualifiers) const = 0;

  /// The class of that name (exact, case-sensitive); never null. Throws TVTQException when the
  /// namespace has no such class.
  virtual std::shared_ptr<ICIMClass> GetClass(const std::string& name,
                                              const TQualifierMap& qualifiers) = 0;
};

}  // namespace NQZMVTQ20
