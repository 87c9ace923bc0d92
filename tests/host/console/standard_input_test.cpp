// SPDX-License-Identifier: Apache-2.0
#include "host/console/standard_input.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <stdexcept>

#include "runtime/file_descriptor.h"

namespace pciinfo {
namespace {

/// A standard input that is a pipe with this text in it, as long as it lives.
class PipedInput final {
 public:
  explicit PipedInput(const std::string& text) : before_(dup(STDIN_FILENO)) {
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    EXPECT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    close(ends[1]);
    dup2(ends[0], STDIN_FILENO);
    close(ends[0]);
  }
  PipedInput(const PipedInput&) = delete;
  PipedInput& operator=(const PipedInput&) = delete;
  ~PipedInput() { dup2(before_.Get(), STDIN_FILENO); }

 private:
  vtq::FileDescriptor before_;
};

TEST(StandardInput, APipeCanBeReadAgainFromItsBeginning) {
  const PipedInput input("some text");
  ASSERT_EQ(MakeStandardInputRepeatable(100), 0);
  EXPECT_EQ(ReadStandardInput(0), "some text");
  lseek(STDIN_FILENO, 0, SEEK_SET);
  EXPECT_EQ(ReadStandardInput(0), "some text");
}

TEST(StandardInput, AFileIsReadFromWhereItStands) {
  const PipedInput input("");
  ReplaceStandardInput("some text");
  lseek(STDIN_FILENO, 5, SEEK_SET);
  EXPECT_EQ(MakeStandardInputRepeatable(1), 5);
  EXPECT_EQ(ReadStandardInput(0), "text");
}

TEST(StandardInput, TooMuchIsRefused) {
  const PipedInput input("some text");
  EXPECT_THROW(MakeStandardInputRepeatable(8), std::runtime_error);
}

}  // namespace
}  // namespace pciinfo
