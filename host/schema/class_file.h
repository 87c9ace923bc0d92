#pragma once

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

/// Reads the classes that the JSON `text` declares, in its order; docs/class-files.md describes the
/// format. `declared` are the classes declared before. Throws ClassFileError without the file name.
std::vector<vtq::ClassSchema> ParseClasses(std::string_view text,
                                           const std::vector<vtq::ClassSchema>& declared);

/// Returns the classes of PciSchema, then those of the files. Throws ClassFileError.
std::vector<vtq::ClassSchema> DeclaredClasses(const std::vector<std::string>& classFiles);

}  // namespace pciinfo
