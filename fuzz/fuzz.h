// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace fuzz {

/// The function that each target defines: runs the code under test on one input and checks the
/// result with Require. An exception ends the process too. Called any number of times in a process.
void CheckInput(std::string_view input);

/// Unless `holds`, prints `what` to standard error and aborts.
inline void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "\nThis does not hold: %s\n", what);
  std::abort();
}

/// Splits an input from its beginning. After the end of the input, it returns zeros and empty
/// texts.
class Pieces final {
 public:
  explicit Pieces(std::string_view input) : left_(input) {}

  bool IsEmpty() const { return left_.empty(); }

  std::uint8_t Byte() {
    if (left_.empty()) return 0;
    const auto byte = static_cast<std::uint8_t>(left_.front());
    left_.remove_prefix(1);
    return byte;
  }

  /// The next `size` bytes, or the rest if it is shorter.
  std::string_view Bytes(std::size_t size) {
    const std::string_view bytes = left_.substr(0, size);
    left_.remove_prefix(bytes.size());
    return bytes;
  }

  /// The bytes before the next `end`; skips `end`.
  std::string_view Until(char end) {
    const std::string_view bytes = left_.substr(0, left_.find(end));
    left_.remove_prefix(std::min(bytes.size() + 1, left_.size()));
    return bytes;
  }

  std::string_view Rest() { return Bytes(left_.size()); }

 private:
  std::string_view left_;
};

}  // namespace fuzz
