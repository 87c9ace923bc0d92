// SPDX-License-Identifier: Apache-2.0
#include "host/cli/limits.h"

#include <chrono>
#include <cmath>

namespace pciinfo {
namespace {

std::chrono::milliseconds TimeOf(const Options& options) {
  return std::chrono::milliseconds(std::llround(options.timeout * 1000));
}

}  // namespace

Limits LimitsOf(const Options& options) {
  return {TimeOf(options), BytesOfLimit(options.memoryLimit)};
}

CaptureLimits CaptureLimitsOf(const Options& options) {
  return LimitsWithin(BytesOfLimit(options.memoryLimit));
}

InputLimits InputLimitsOf(const Options& options) {
  return {CaptureLimitsOf(options).bytes, TimeOf(options)};
}

}  // namespace pciinfo
