// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <string>

/// A file in memory that receives the output of a program.
class CapturedOutput {
 public:
  CapturedOutput() : descriptor_(memfd_create("output", MFD_CLOEXEC)) {
    if (descriptor_ < 0) throw std::runtime_error("memfd_create failed");
  }
  ~CapturedOutput() { close(descriptor_); }
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;

  int Descriptor() const { return descriptor_; }

  std::string Text() const {
    std::string text;
    std::array<char, 65536> block;
    ssize_t count = 0;
    while ((count = pread(descriptor_, block.data(), block.size(),
                          static_cast<off_t>(text.size()))) > 0) {
      text.append(block.data(), static_cast<std::size_t>(count));
    }
    return text;
  }

 private:
  int descriptor_;
};
