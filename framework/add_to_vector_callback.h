// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <vector>

namespace NQZMVTQ20 {

/// A callback for enumerations that collects: appends each element to a vector, which it does not
/// own and which must outlive it, and returns true, so that the enumeration continues.
template <class T>
class TAddToVectorCallback {
 public:
  explicit TAddToVectorCallback(std::vector<std::shared_ptr<T>>& target) noexcept
      : target_(&target) {}

  bool operator()(const std::shared_ptr<T>& item) const {
    target_->push_back(item);
    return true;
  }

 private:
  std::vector<std::shared_ptr<T>>* target_;
};

}  // namespace NQZMVTQ20
