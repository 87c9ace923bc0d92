#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/class_schema.h"

namespace pciinfo {

/// A file of class declarations cannot be used; what() names the file and the place in it.
class ClassFileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The classes that the JSON `text` declares, in its order; docs/class-files.md describes it.
/// `declared` are the classes that there are already. Throws ClassFileError, without the file.
std::vector<vtq::ClassSchema> ParseClasses(std::string_view text,
                                           const std::vector<vtq::ClassSchema>& declared);

/// The classes of PciSchema and, behind them, those of the files. Throws ClassFileError.
std::vector<vtq::ClassSchema> DeclaredClasses(const std::vector<std::string>& classFiles);

}  // namespace pciinfo
