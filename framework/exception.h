// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdexcept>
#include <string>

#include "framework/export.h"
#include "framework/status_code.h"

namespace NQZMVTQ20 {

/// The exception that all operations of the framework throw. `what()` describes the failure,
/// without a line end.
class VTQ_EXPORT TVTQException : public std::runtime_error {
 public:
  /// `description` becomes `what()`; `code` is never kSuccess.
  explicit TVTQException(const std::string& description,
                         TVTQStatusCode::EVTQStatusCode code = TVTQStatusCode::kFailure);
  TVTQException(const TVTQException&) = default;
  TVTQException& operator=(const TVTQException&) = default;
  ~TVTQException() override;

  TVTQStatusCode::EVTQStatusCode GetStatusCode() const noexcept;

 private:
  TVTQStatusCode::EVTQStatusCode code_;
};

}  // namespace NQZMVTQ20
