// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "framework/exception.h"

namespace vtq {

/// The text and code of an exception.
struct Failure {
  std::string text;
  NQZMVTQ20::TVTQStatusCode::EVTQStatusCode code = NQZMVTQ20::TVTQStatusCode::kSuccess;
};

/// Runs `step`, which must throw TVTQException, and returns the failure.
template <class Step>
Failure FailureOf(const Step& step) {
  try {
    step();
  } catch (const NQZMVTQ20::TVTQException& failure) {
    return {failure.what(), failure.GetStatusCode()};
  }
  ADD_FAILURE() << "nothing was thrown";
  return {};
}

}  // namespace vtq
