// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pciinfo {

/// A value of a small JSON document. Unlike those of the library it needs no memory to be freed, so
/// that a lack of memory is an exception, not the end of the process.
struct JsonValue {
  enum class Kind { kNull, kBoolean, kNumber, kString, kArray, kObject };

  Kind kind = Kind::kNull;
  bool flag = false;  ///< of a boolean
  std::string text;   ///< of a string
  /// Of an object, with their names, and of an array, without; in the order of the document.
  std::vector<std::pair<std::string, JsonValue>> members = {};

  /// Returns the name of the kind, for messages.
  const char* KindName() const;
};

/// Reads a document. Throws ClassFileError that says what is wrong and where.
JsonValue ParseJson(std::string_view text);

}  // namespace pciinfo
