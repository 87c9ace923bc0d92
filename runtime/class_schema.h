// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "framework/cim_value.h"
#include "framework/export.h"

namespace vtq {

/// One value of an integer property and its meaning.
struct NamedValue {
  unsigned value = 0;
  std::string meaning;
};

/// The declaration of one property of a class.
struct PropertySchema {
  std::string name;
  NQZMVTQ20::TCIMValue::TCIMType type;
  bool isArray = false;
  bool isKey = false;
  /// For a reference: the classes of the instances that it may refer to.
  std::vector<std::string> targets;
  std::string description;
  /// Meanings of the values of a coded property, in the order of the values; other values may
  /// occur.
  std::vector<NamedValue> values = {};
  /// The property of a superclass that this one redefines; empty when there is none.
  std::string overrides = {};
  /// For a reference with several targets: their common superclass.
  std::string commonTarget = {};
};

/// The declaration of a class.
struct ClassSchema {
  std::string name;
  std::string superclass;  ///< empty when it has none
  std::string description;
  std::vector<PropertySchema> properties;
};

/// Returns the classes that an association joins: the targets of its references, each once, in the
/// order of their declaration. Empty for a class without references.
VTQ_EXPORT std::vector<std::string> JoinedClasses(const ClassSchema& schema);

}  // namespace vtq
