// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace pciinfo {

/// Reads a file line by line, however large it is.
class LineReader final {
 public:
  /// Reads from an open file, which messages call `name`; a line of more than `most` bytes (0: any
  /// number) is an error.
  LineReader(int descriptor, std::string name, std::uint64_t most)
      : descriptor_(descriptor), name_(std::move(name)), most_(most) {}

  /// Reads the next line without its end. Returns false after the last line. Throws
  /// std::runtime_error when the file cannot be read or a line is too long.
  bool Next(std::string& line);
  /// Reads all that is left, with the ends of lines.
  std::string Rest();

 private:
  bool ReadMore();

  int descriptor_;
  std::string name_;
  std::uint64_t most_;
  std::string text_;       ///< what was read
  std::size_t begin_ = 0;  ///< of the next line in it
};

}  // namespace pciinfo
