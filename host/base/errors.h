// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdexcept>

namespace pciinfo {

/// The command line or a request is wrong; `what()` says what to write instead.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace pciinfo
