// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdexcept>
#include <string_view>

#include "runtime/repository.h"

namespace pciinfo {

/// The text is not the JSON of instances; what() names the place and the fault.
class JsonInputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads what `instances` printed as JSON or as JSON Lines back into `repository`, which declares
/// the classes. The text is untrusted: every name, type, range and path is checked. Keys that
/// docs/formats.md does not describe are ignored. Throws JsonInputError; the repository then keeps
/// the instances before the fault.
void ReadInstances(std::string_view text, vtq::Namespace& repository);

}  // namespace pciinfo
