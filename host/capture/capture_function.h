// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <filesystem>

#include "host/capture/capture_machine.h"

namespace pciinfo {

/// Captures the directories of PCI functions.
class FunctionCapture final {
 public:
  explicit FunctionCapture(CaptureReceiver& receiver) : receiver_(receiver) {}

  /// Adds what the plug-ins read of a function's directory: attributes, links, vital product data,
  /// and the names under which the system knows the function.
  void Add(const std::filesystem::path& function);

 private:
  void AddLinks(const std::filesystem::path& function);
  void AddVitalProductData(const std::filesystem::path& function);
  void AddNames(const std::filesystem::path& directory, int level);

  CaptureReceiver& receiver_;
  /// For the vital product data of all functions, because some cards answer slowly or not at all.
  std::chrono::steady_clock::duration left_ = std::chrono::seconds(10);
};

}  // namespace pciinfo
