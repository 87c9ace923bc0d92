// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

/// During its lifetime, `new` of exactly `size` bytes throws std::bad_alloc.
class FailingNew final {
 public:
  explicit FailingNew(std::size_t size);
  FailingNew(const FailingNew&) = delete;
  FailingNew& operator=(const FailingNew&) = delete;
  ~FailingNew();
};
