#pragma once

#include <stdexcept>
#include <string_view>

#include "runtime/repository.h"

namespace pciinfo {

/// A text is no object path of a repository; what() says what is wrong with it.
class PathError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The reference whose text TCIMReference::ToString makes: keys may stand in any order, but all of
/// the class's keys must be there, each once and of its type. No instance needs to have that path.
/// Throws PathError.
NQZMVTQ20::TCIMReference ReadPath(std::string_view path, const vtq::Namespace& repository);

}  // namespace pciinfo
