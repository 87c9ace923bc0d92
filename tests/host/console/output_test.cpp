// SPDX-License-Identifier: Apache-2.0
#include "host/console/output.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

TEST(Output, ArrivesInOrderAndInFull) {
  OutputToText output;
  std::string expected;
  for (int i = 0; i < 50000; ++i) {
    const std::string line = std::to_string(i) + "\n";
    expected += line;
    output.Get().Write(line);
  }
  EXPECT_EQ(output.Text(), expected);
}

TEST(Output, TextsOfAllSizesArriveInOrder) {
  constexpr std::size_t kLong = 65536;
  OutputToText output;
  std::string expected;
  for (const std::size_t size :
       {std::size_t{1}, kLong - 1, kLong, std::size_t{1}, kLong - 2, std::size_t{2}, kLong + 1,
        std::size_t{0}, 3 * kLong, std::size_t{5}, kLong - 4, kLong}) {
    const std::string text(size, static_cast<char>('a' + expected.size() % 26));
    expected += text;
    output.Get().Write(text);
  }
  EXPECT_TRUE(output.Text() == expected);  // not EXPECT_EQ, which would print both long texts
}

TEST(Output, NothingIsWrittenBeforeTheFlushOfAShortText) {
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_NONBLOCK), 0);
  Output output(ends[1]);
  output.Write("x");
  char byte = 0;
  EXPECT_EQ(read(ends[0], &byte, 1), -1);
  output.Flush();
  EXPECT_EQ(read(ends[0], &byte, 1), 1);
  close(ends[0]);
  close(ends[1]);
}

TEST(Output, AFullDiskIsReported) {
  const int full = open("/dev/full", O_WRONLY);
  ASSERT_GE(full, 0);
  Output output(full);
  output.Write("x");
  try {
    output.Flush();
    FAIL() << "no error";
  } catch (const OutputError& error) {
    EXPECT_STREQ(error.what(), "cannot write the output: No space left on device");
  }
  close(full);
}

TEST(Output, AFullDiskIsReportedBeforeTheEndOfALongText) {
  const int full = open("/dev/full", O_WRONLY);
  Output output(full);
  EXPECT_THROW(output.Write(std::string(1 << 20, 'x')), OutputError);
  close(full);
}

TEST(Output, AClosedPipeThrowsClosedPipe) {
  std::signal(SIGPIPE, SIG_IGN);
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  close(ends[0]);
  Output output(ends[1]);
  output.Write("x");
  EXPECT_THROW(output.Flush(), ClosedPipe);
  close(ends[1]);
}

}  // namespace
}  // namespace pciinfo
