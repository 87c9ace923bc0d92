// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace pciinfo {

/// A line on standard error that says what is being done, as soon as that takes longer than a
/// second. The owner calls Show when it is due.
class ProgressLine final {
 public:
  using Clock = std::chrono::steady_clock;

  /// Nothing is ever shown unless `wanted` and standard error is a terminal.
  explicit ProgressLine(bool wanted);
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  ~ProgressLine() { End(); }

  /// Whether the line is shown when something takes long.
  bool IsWanted() const noexcept { return isWanted_; }
  /// What is being done from now on.
  void Tell(const std::string& what);
  /// When Show is to be called; nothing when it is not.
  std::optional<Clock::time_point> GetDueTime() const noexcept { return due_; }
  void Show();
  /// Removes the line until Tell is called again.
  void Erase();
  /// Removes the line for good.
  void End();

 private:
  bool isWanted_;
  bool isShown_ = false;
  std::string text_;
  std::optional<Clock::time_point> due_;
};

}  // namespace pciinfo
