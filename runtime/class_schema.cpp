// SPDX-License-Identifier: Apache-2.0
#include "runtime/class_schema.h"

#include <algorithm>

namespace vtq {

std::vector<std::string> JoinedClasses(const ClassSchema& schema) {
  std::vector<std::string> joined;
  for (const PropertySchema& property : schema.properties) {
    for (const std::string& target : property.targets) {
      if (std::find(joined.begin(), joined.end(), target) == joined.end()) joined.push_back(target);
    }
  }
  return joined;
}

}  // namespace vtq
