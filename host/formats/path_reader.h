// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdexcept>
#include <string_view>

#include "runtime/repository.h"

namespace pciinfo {

/// The text is not an object path of the repository; what() says why.
class PathError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Parses a path as TCIMReference::ToString writes it. Keys may come in any order; every key of the
/// class must occur once, with a value of its type. The instance need not exist. Throws PathError.
NQZMVTQ20::TCIMReference ReadPath(std::string_view path, const vtq::Namespace& repository);

}  // namespace pciinfo
