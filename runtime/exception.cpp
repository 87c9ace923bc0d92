// SPDX-License-Identifier: Apache-2.0
#include "framework/exception.h"

namespace NQZMVTQ20 {

TVTQException::TVTQException(const std::string& description, TVTQStatusCode::EVTQStatusCode code)
    : std::runtime_error(description), code_(code) {}

TVTQException::~TVTQException() = default;

TVTQStatusCode::EVTQStatusCode TVTQException::GetStatusCode() const noexcept { return code_; }

}  // namespace NQZMVTQ20
