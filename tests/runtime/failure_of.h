#pragma once

#include <gtest/gtest.h>

#include <string>

#include "framework/exception.h"

namespace vtq {

/// What a step failed with.
struct Failure {
  std::string text;
  NQZMVTQ20::TVTQStatusCode::EVTQStatusCode code = NQZMVTQ20::TVTQStatusCode::kSuccess;
};

/// Runs `step`, which has to throw TVTQException, and returns what it threw.
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
