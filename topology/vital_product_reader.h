// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <mutex>
#include <string>

#include "topology/kernel_directory.h"

namespace topology {

/// What was read of vital product data.
struct VitalProductBytes {
  std::string bytes;
  std::string trouble;  ///< why there are no more of them; empty: they were not needed
};

/// Reads the `vpd` files of functions. Some cards answer slowly or not at all, so one function gets
/// a second, and all together get ten. May be called on several threads at once, and then reads one
/// file after the other.
class VitalProductReader {
 public:
  VitalProductBytes Read(const Directory& device);

 private:
  std::mutex mutex_;  // guards the members below
  std::chrono::steady_clock::duration left_ = std::chrono::seconds(10);
};

}  // namespace topology
