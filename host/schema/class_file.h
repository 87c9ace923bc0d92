// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/class_schema.h"

namespace pciinfo {

/// A class file is invalid; what() names the file and the place in it.
class ClassFileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The classes that were read from class files.
struct Declarations {
  std::vector<vtq::ClassSchema> classes;     ///< in the order of declaration
  std::map<std::string, std::string> files;  ///< the file that declares a class, by class name
  /// Those that are collected only when the user names them or asks for all.
  std::set<std::string> onRequest = {};
};

/// What a class file says.
struct ClassFile {
  std::vector<vtq::ClassSchema> classes;  ///< in the order of the file
  bool onRequest = false;                 ///< see Declarations::onRequest
};

/// Reads the JSON `text` of a class file; docs/class-files.md describes the format. `declared` are
/// the classes declared before. Throws ClassFileError without the file name.
ClassFile ParseClasses(std::string_view text, const Declarations& declared);

/// Adds the classes of a file to `declared`. Returns their names. Throws ClassFileError.
std::vector<std::string> ReadClassFile(const std::string& file, Declarations& declared);

/// Returns the classes of a file that refers to no other. Throws ClassFileError.
std::vector<vtq::ClassSchema> LoadClasses(const std::string& file);

}  // namespace pciinfo
