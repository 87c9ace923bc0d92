// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "runtime/service_failures.h"

namespace vtq {

/// Collects the descriptions of all service failures during its lifetime.
class ObservedFailures final {
 public:
  ObservedFailures() {
    ObserveServiceFailures(
        [this](const std::string& description) { descriptions_.push_back(description); });
  }
  ObservedFailures(const ObservedFailures&) = delete;
  ObservedFailures& operator=(const ObservedFailures&) = delete;
  ~ObservedFailures() { ObserveServiceFailures(nullptr); }

  const std::vector<std::string>& Get() const noexcept { return descriptions_; }

 private:
  std::vector<std::string> descriptions_;
};

}  // namespace vtq
