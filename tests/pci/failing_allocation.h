// SPDX-License-Identifier: Apache-2.0
#pragma once

/// During its lifetime, `new (std::nothrow) T[n]` returns null.
class FailingAllocation {
 public:
  FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
  ~FailingAllocation();
};
