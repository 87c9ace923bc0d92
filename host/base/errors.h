#pragma once

#include <stdexcept>

namespace pciinfo {

/// The caller asked for something that makes no sense; `what()` says how to ask for it.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace pciinfo
