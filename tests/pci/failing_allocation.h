#pragma once

/// While it lives, `new (std::nothrow) T[n]` gets no memory.
class FailingAllocation {
 public:
  FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
  ~FailingAllocation();
};
