#pragma once

#include <string>
#include <vector>

#include "framework/cim_value.h"
#include "framework/export.h"

namespace vtq {

/// One value that an integer property may have, and what it means.
struct NamedValue {
  unsigned value = 0;
  std::string meaning;
};

/// What a class declares about one property.
struct PropertySchema {
  std::string name;
  NQZMVTQ20::TCIMValue::TCIMType type;
  bool isArray = false;
  bool isKey = false;
  /// For a reference: the classes whose instances it may name.
  std::vector<std::string> targets;
  std::string description;
  /// Words for the values of a coded property, in the order of the values; other values may occur.
  std::vector<NamedValue> values = {};
  /// The property of a superclass that this one redefines; empty when there is none.
  std::string overrides = {};
  /// For a reference with several targets: the class that they have in common.
  std::string commonTarget = {};
};

/// What the repository knows of a class.
struct ClassSchema {
  std::string name;
  std::string superclass;  ///< empty when it has none
  std::string description;
  std::vector<PropertySchema> properties;
};

/// The classes that an association joins: the targets of all its references, each once, in the
/// order in which they are declared. Empty for a class without references.
VTQ_EXPORT std::vector<std::string> JoinedClasses(const ClassSchema& schema);

}  // namespace vtq
