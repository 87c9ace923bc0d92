// SPDX-License-Identifier: Apache-2.0
#pragma once

/// `count`, or a quarter of it in builds with sanitizers, which take ten times as long. For rounds
/// and sizes of which a quarter still runs all code. The build without sanitizers does all of them.
constexpr unsigned FewerIfSanitized(unsigned count) {
#ifdef PCIINFO_SANITIZED
  return count / 4;
#else
  return count;
#endif
}
