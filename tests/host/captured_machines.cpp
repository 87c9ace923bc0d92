// Every capture of the folder that PCIINFO_MACHINES named when the tests were built.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "host/json_reader.h"
#include "tests/host/cim_xml_document.h"
#include "tests/host/run_program.h"
#include "tests/host/written.h"
#include "tests/runtime/temporary_directory.h"

namespace {

namespace fs = std::filesystem;

std::vector<std::string> Captures() {
  std::vector<std::string> files;
  for (const auto& entry : fs::directory_iterator(PCIINFO_MACHINES)) {
    if (entry.path().string().ends_with(".tar.gz")) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

class CapturedMachine : public testing::TestWithParam<std::string> {
 protected:
  static RunResult Run(const std::string& capture, std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--root", capture});
    return RunPciinfo(arguments);
  }
};

TEST_P(CapturedMachine, EveryClassIsServed) {
  const RunResult result = Run(GetParam(), {"instances", "--format", "json"});
  EXPECT_TRUE(result.status == 0 || result.status == 1) << result.status << result.err;
  const auto document = nlohmann::json::parse(result.out);
  EXPECT_FALSE(document["instances"].empty());
  EXPECT_THAT(result.err, testing::Not(testing::HasSubstr("warning")));
  EXPECT_LE(Run(GetParam(), {"slots"}).status, 1);
}

TEST_P(CapturedMachine, ItsRedactedCaptureHasTheSameSlots) {
  const vtq::TemporaryDirectory directory;
  const std::string safe = directory.GetPath() + "/safe.tar.zst";
  EXPECT_EQ(Run(GetParam(), {"capture", "--redact", safe}).status, 0);
  const std::vector<std::string> query = {"slots", "--format", "json"};
  EXPECT_EQ(Run(safe, query).out, Run(GetParam(), query).out);
}

TEST_P(CapturedMachine, ItsFormatsHoldTheSame) {
  const std::string text = Run(GetParam(), {"instances", "--format", "json"}).out;
  const auto repository = MakeEmptyRepository();
  pciinfo::ReadInstances(text, *repository);
  EXPECT_EQ(Written("json", *repository), text);
  const CimXmlDocument xml(Run(GetParam(), {"instances", "--format", "cim-xml"}).out);
  EXPECT_TRUE(xml.IsValid());
  EXPECT_EQ(xml.ToJson(), AsXmlCarries(nlohmann::json::parse(text)));
}

std::string NameOf(const testing::TestParamInfo<std::string>& capture) {
  std::string name = fs::path(capture.param).stem().stem();
  std::replace_if(
      name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Machines, CapturedMachine, testing::ValuesIn(Captures()), NameOf);

}  // namespace
