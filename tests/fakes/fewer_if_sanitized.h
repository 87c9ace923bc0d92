// SPDX-License-Identifier: Apache-2.0
#pragma once

/// `count`, or a quarter of it in builds with sanitizers, which take ten times as long. For rounds
/// and sizes of which a quarter still runs all code; the other build does them in full.
constexpr unsigned FewerIfSanitized(unsigned count) {
#ifdef PCIINFO_SANITIZED
  return count / 4;
#else
  return count;
#endif
}
