// SPDX-License-Identifier: Apache-2.0
#include "host/console/repeatable_input.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>

#include "runtime/file_descriptor.h"
#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

using namespace std::chrono_literals;

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

std::string ContentOf(const RepeatableInput& input) {
  std::ifstream stream(input.GetFile());
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::string FailureOf(const std::string& name, const InputLimits& limits) {
  try {
    const RepeatableInput input(name, limits);
    return "none";
  } catch (const std::runtime_error& failure) {
    return failure.what();
  }
}

constexpr InputLimits kLimits{100, 10s};

TEST(RepeatableInput, APipeCanBeReadAgainFromItsBeginning) {
  const PipedInput piped("some text");
  const RepeatableInput input("-", kLimits);
  EXPECT_EQ(ContentOf(input), "some text");
  EXPECT_EQ(ContentOf(input), "some text");
}

TEST(RepeatableInput, ANamedPipeIsWaitedFor) {
  const vtq::TemporaryDirectory directory;
  ASSERT_EQ(mkfifo((directory / "pipe").c_str(), 0600), 0);
  std::thread writer([&directory] {
    std::this_thread::sleep_for(50ms);
    std::ofstream(directory / "pipe") << "some text";
  });
  EXPECT_EQ(ContentOf(RepeatableInput(directory / "pipe", kLimits)), "some text");
  writer.join();
}

TEST(RepeatableInput, FilesAndDirectoriesAreLeftWhereTheyAre) {
  const vtq::TemporaryDirectory directory;
  for (const std::string& name : {directory.Write("file", "x"), directory.GetPath()}) {
    EXPECT_EQ(RepeatableInput(name, kLimits).GetFile(), name);
  }
}

TEST(RepeatableInput, TooMuchIsRefused) {
  const PipedInput piped("some text");
  EXPECT_EQ(FailureOf("-", {8, 10s}), "standard input is larger than 0 MiB (see --memory-limit)");
}

TEST(RepeatableInput, WhatNeverEndsIsGivenUp) {
  const vtq::TemporaryDirectory directory;
  const std::string pipe = directory / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(FailureOf(pipe, {100, 100ms}),
            pipe + " did not come to an end in 0.1 seconds (see --timeout)");
}

}  // namespace
}  // namespace pciinfo
