#pragma once

#include <stdexcept>
#include <string_view>

#include "runtime/repository.h"

namespace pciinfo {

/// A text is not the JSON of instances; what() says where and what is wrong there.
class JsonInputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads what `instances` printed as JSON or as JSON Lines back into `repository`, which declares
/// the classes. The text may come from anybody: every name, type, range and path is checked, and
/// only keys beside those of docs/formats.md are passed over. Throws JsonInputError; the instances
/// before the place that it names are in the repository then.
void ReadInstances(std::string_view text, vtq::Namespace& repository);

}  // namespace pciinfo
