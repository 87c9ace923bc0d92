// SPDX-License-Identifier: Apache-2.0
#include "runtime/service_failures.h"

#include <cerrno>
#include <utility>

#include "framework/exception.h"

namespace vtq {

using NQZMVTQ20::TVTQStatusCode;

namespace {

std::function<void(const std::string&)> failureObserver;

}  // namespace

void ObserveServiceFailures(std::function<void(const std::string& description)> observer) {
  failureObserver = std::move(observer);
}

void ReportServiceFailure(std::string_view description) noexcept {
  try {
    if (failureObserver) failureObserver(std::string(description));
  } catch (...) {
    // The caller must get the failure itself, not the observer's exception.
  }
}

void FailService(const std::string& description, TVTQStatusCode::EVTQStatusCode code) {
  ReportServiceFailure(description);
  throw NQZMVTQ20::TVTQException(description, code);
}

TVTQStatusCode::EVTQStatusCode StatusOfErrno(int error) noexcept {
  if (error == ENOENT || error == ENOTDIR) return TVTQStatusCode::kNotFound;
  if (error == EACCES || error == EPERM) return TVTQStatusCode::kAccessDenied;
  return TVTQStatusCode::kFailure;
}

}  // namespace vtq
