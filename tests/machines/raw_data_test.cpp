// SPDX-License-Identifier: Apache-2.0
#include "tests/machines/collection.h"
#include "tests/machines/machine.h"
#include "tests/machines/process.h"

namespace {

using nlohmann::json;

class RawDataTest : public MachineTest {};
INSTANTIATE_TEST_SUITE_P(Machines, RawDataTest, testing::ValuesIn(AllMachines()), TestNameOf);

// The instance of a command that ran: without "RawResult" if it printed nothing.
json Expected(const std::string& command, const RunResult& run) {
  json properties = {{"Command", command}};
  const std::vector<std::string> lines = LinesOf(run.out);
  if (!lines.empty()) properties["RawResult"] = lines;
  return properties;
}

TEST_P(RawDataTest, IsTheOutputOfBothListingsLineForLine) {
  std::vector<json> expected;
  for (const char* option : {"-xxxx", "-vvv"}) {
    const RunResult run = RunToEnd({"lspci", option});
    // If a listing fails without output, the class ends.
    if (run.status != 0 && run.out.empty()) break;
    expected.push_back(Expected(std::string("lspci ") + option, run));
  }
  std::vector<json> collected;
  for (const json& listing : Collect(GetParam(), {"QZMSG_PCIRawData"}).instances) {
    collected.push_back(listing.at("properties"));
  }
  EXPECT_EQ(collected, expected);
}

}  // namespace
