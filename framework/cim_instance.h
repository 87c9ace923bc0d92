// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "framework/cim_reference.h"
#include "framework/qualifier_map.h"

namespace NQZMVTQ20 {

class ICIMClass;

/// A property of an instance.
struct TCIMProperty {
  std::string name;
  TCIMValue value;  ///< null when the class declares the property and the instance has not set it
};

/// One instance of a CIM class. Shared between the framework and the plug-in. All calls come on one
/// thread.
class ICIMInstance {
 public:
  virtual ~ICIMInstance() = default;

  /// The class of the instance; never null. Throws TVTQException when that class no longer exists.
  virtual std::shared_ptr<ICIMClass> GetClass(const TQualifierMap& qualifiers) const = 0;

  /// The object path made of the key properties. Throws TVTQException when one of them is unset.
  virtual TCIMReference GetObjectReference(const TQualifierMap& qualifiers) const = 0;

  /// The property of that name (exact, case-sensitive). Throws TVTQException when the class does
  /// not declare it.
  virtual TCIMProperty GetProperty(const std::string& name,
                                   const TQualifierMap& qualifiers) const = 0;

  /// Sets a property; a null value unsets it. Throws TVTQException when the class does not declare
  /// it, when the value's type or shape is not exactly the declared one, or when a key of a
  /// committed instance would change.
  virtual void SetProperty(const std::string& name, const TCIMValue& value,
                           const TQualifierMap& qualifiers) = 0;

  /// Passes the instance to the framework, which holds it from then on. If the framework already
  /// holds an instance with this object path, this one replaces it, at the same position in the
  /// enumeration order. Throws TVTQException when a key property is unset.
  virtual void Commit(const TQualifierMap& qualifiers) = 0;
};

}  // namespace NQZMVTQ20
