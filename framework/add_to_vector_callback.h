#pragma once

#include <memory>
#include <vector>

namespace NQZMVTQ20 {

/// The callable for enumerations that collects: appends everything it is given to a vector, which
/// it does not own and which must outlive it, and answers true so that the enumeration goes on.
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
