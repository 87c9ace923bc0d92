// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

/// The monitor of an emulated machine (QEMU's QMP), which plugs and unplugs cards while it runs.
class Monitor {
 public:
  /// Makes the two pipes of the monitor in the directory. Throws std::runtime_error.
  explicit Monitor(const std::filesystem::path& directory);
  ~Monitor();
  Monitor(const Monitor&) = delete;
  Monitor& operator=(const Monitor&) = delete;

  /// The emulator's options that connect it with the pipes.
  std::vector<std::string> Options() const;
  /// Sends the commands once, as soon as the file `console` has the line "ready for changes".
  void SendWhenReady(const std::filesystem::path& console, const nlohmann::json& commands);
  /// What the emulator has answered until now, a line for each command.
  std::string ReadAnswers() const;

 private:
  std::filesystem::path pipe_;
  int input_ = -1;
  int output_ = -1;
  bool isSent_ = false;
};
