// SPDX-License-Identifier: Apache-2.0
#include "runtime/service_failures.h"

#include <cerrno>
#include <utility>

#include "framework/exception.h"

namespace vtq {

using NQZMVTQ20::TVTQStatusCode;

namespace {

using Observer = std::function<void(const std::string&)>;

Observer failureObserver;
Observer doubtObserver;

void Call(const Observer& observer, std::string_view description) noexcept {
  try {
    if (observer) observer(std::string(description));
  } catch (...) {
    // The caller must get the service's result, not the observer's exception.
  }
}

}  // namespace

void ObserveServiceFailures(std::function<void(const std::string& description)> observer) {
  failureObserver = std::move(observer);
}

void ReportServiceFailure(std::string_view description) noexcept {
  Call(failureObserver, description);
}

void ObserveDoubtfulOutputs(std::function<void(const std::string& description)> observer) {
  doubtObserver = std::move(observer);
}

void ReportDoubtfulOutput(std::string_view description) noexcept {
  Call(doubtObserver, description);
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
