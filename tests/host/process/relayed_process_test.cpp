#include "host/process/relayed_process.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

#include "host/console/output.h"
#include "tests/fakes/captured_output.h"

namespace pciinfo {
namespace {

ExitStatus Print(const std::string& text) {
  WriteAll(STDOUT_FILENO, text);
  return kAllCollected;
}

TEST(RelayedProcess, GivesOutputAndStatus) {
  const RelayedResult result = RunRelayed("side", 0, [] {
    Print("hello");
    return kFailed;
  });
  EXPECT_EQ(result.output, "hello");
  EXPECT_TRUE(result.hasExited);
  EXPECT_EQ(result.status, 1);
  EXPECT_FALSE(result.isTooLarge);
}

TEST(RelayedProcess, AnExceptionIsAStatus) {
  const RelayedResult result =
      RunRelayed("side", 0, []() -> ExitStatus { throw std::runtime_error("out of order"); });
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "");
}

TEST(RelayedProcess, ADeathIsNoExit) {
  const RelayedResult result = RunRelayed("side", 0, []() -> ExitStatus {
    Print("part");
    kill(getpid(), SIGKILL);
    return kAllCollected;
  });
  EXPECT_FALSE(result.hasExited);
  EXPECT_EQ(result.output, "part");
}

TEST(RelayedProcess, AFloodIsEnded) {
  const RelayedResult result = RunRelayed("side", 100000, []() -> ExitStatus {
    std::signal(SIGPIPE, SIG_IGN);
    while (WriteAll(STDOUT_FILENO, std::string(10000, 'x')) == 0) continue;
    return kAllCollected;
  });
  EXPECT_TRUE(result.isTooLarge);
  EXPECT_LT(result.output.size(), 300000U);
}

}  // namespace
}  // namespace pciinfo
