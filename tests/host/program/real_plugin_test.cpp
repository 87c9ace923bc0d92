// SPDX-License-Identifier: Apache-2.0

// The program with its own plug-in on the machine that the tests run on.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

#include "host/formats/json_reader.h"
#include "tests/host/cim_xml_document.h"
#include "tests/host/run_program.h"
#include "tests/host/written.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

/// "0000:00:1f.3 8086:a170" for every function that `lspci -Dn` lists, sorted.
std::vector<std::string> FunctionsOfLspci() {
  std::vector<std::string> functions;
  for (const std::string& line : LinesOf(RunProcess({"/usr/bin/lspci", "-D", "-n"}).out)) {
    std::istringstream words(line);
    std::string address, baseClass, ids;
    words >> address >> baseClass >> ids;
    functions.push_back(address + " " + ids);
  }
  std::sort(functions.begin(), functions.end());
  return functions;
}

/// The same for functions in the JSON of views, in its order.
std::vector<std::string> FunctionsIn(const json& listed) {
  std::vector<std::string> functions;
  for (const json& function : listed) {
    functions.push_back(function["address"].get<std::string>() + " " +
                        function["id"].get<std::string>());
  }
  return functions;
}

TEST(RealPlugin, TheDevicesAreThoseOfLspci) {
  const RunResult result = RunPciinfo({"devices", "--format", "json"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(FunctionsIn(json::parse(result.out)["functions"]), FunctionsOfLspci());
}

TEST(RealPlugin, DescriptionsAreThoseOfLspci) {
  const std::string out =
      RunPciinfo({"instances", "QZMSG_PCIDevice", "QZMSG_PCIBridge", "--format", "yaml"}).out;
  for (const std::string& line : LinesOf(RunProcess({"/usr/bin/lspci"}).out)) {
    const std::string description = line.substr(line.find(' ') + 1);
    const std::string withoutRevision = description.substr(0, description.find(" (rev"));
    EXPECT_THAT(out, HasSubstr(withoutRevision));
  }
}

TEST(RealPlugin, EveryFunctionIsInOnePlace) {
  const json document = json::parse(RunPciinfo({"slots", "--format", "json"}).out);
  std::vector<std::string> placed;
  const auto add = [&placed](const json& functions) {
    for (const std::string& function : FunctionsIn(functions)) placed.push_back(function);
  };
  for (const char* place : {"onBoard", "unnamed", "unknown"}) add(document[place]);
  for (const char* groups : {"slots", "shared"}) {
    for (const json& group : document[groups]) add(group["functions"]);
  }
  std::sort(placed.begin(), placed.end());
  EXPECT_EQ(placed, FunctionsOfLspci());
}

TEST(RealPlugin, RawDataIsTheOutputOfLspci) {
  const json document =
      json::parse(RunPciinfo({"instances", "QZMSG_PCIRawData", "--format", "json"}).out);
  ASSERT_EQ(document["instances"].size(), 2U);
  const json& dump = document["instances"][0]["properties"];
  EXPECT_EQ(dump["Command"], "lspci -xxxx");
  EXPECT_EQ(document["instances"][1]["properties"]["Command"], "lspci -vvv");
  EXPECT_EQ(dump["RawResult"].get<std::vector<std::string>>().size(),
            LinesOf(RunProcess({"/usr/bin/lspci", "-xxxx"}).out).size());
}

TEST(RealPlugin, AllFormatsHaveTheSameContent) {
  const std::string text = RunPciinfo({"instances", "--format", "json"}).out;
  const auto repository = MakeEmptyRepository();
  pciinfo::ReadInstances(text, *repository);
  EXPECT_EQ(Written("json", *repository), text);
  const CimXmlDocument xml(RunPciinfo({"instances", "--format", "cim-xml"}).out);
  EXPECT_TRUE(xml.IsValid());
  EXPECT_EQ(xml.ToJson(), AsXmlCarries(json::parse(text)));
}

TEST(RealPlugin, ThePluginDoesNotViolateTheContract) {
  const RunResult result = RunPciinfo({"instances", "--format", "jsonl"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.err, testing::Not(HasSubstr("warning")));
}

TEST(RealPlugin, ClassesListsBothPlugins) {
  const std::string out = RunPciinfo({"classes"}).out;
  EXPECT_THAT(out, HasSubstr("PCI Information Collector"));
  EXPECT_THAT(out, HasSubstr("PCI Topology Collector"));
  EXPECT_THAT(out, HasSubstr("Classes (\"instances\" prints them by name, or all with --all):\n"
                             "VTQ_PCIFunction : "));
}

/// The classes of which the table says how many instances there are.
std::vector<std::string> CountedClasses(const RunResult& result) {
  std::vector<std::string> classes;
  for (const std::string& line : LinesOf(result.out)) {
    const std::size_t colon = line.find(": ");
    if (line.find(" instance", colon) == std::string::npos || line[0] == ' ') continue;
    classes.push_back(line.substr(0, colon));
  }
  return classes;
}

TEST(RealPlugin, InstancesPrintsTheInventoryUnlessMoreIsAskedFor) {
  const std::vector<std::string> inventory{
      "QZMSG_PCIDevice",    "QZMSG_PCIBridge",     "QZMSG_SystemSlot", "QZMSG_SystemBoard",
      "QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice", "QZMSG_PCIRawData"};
  EXPECT_EQ(CountedClasses(RunPciinfo({"instances"})), inventory);
  std::vector<std::string> all = inventory;
  all.insert(all.end(), {"VTQ_PCIFunction", "VTQ_PCIFunctionDetails", "VTQ_PCISlot",
                         "VTQ_PCIFunctionInSlot", "VTQ_PCISharedPort"});
  EXPECT_EQ(CountedClasses(RunPciinfo({"instances", "--all"})), all);
  EXPECT_EQ(CountedClasses(RunPciinfo({"instances", "VTQ_PCISlot"})),
            (std::vector<std::string>{"VTQ_PCISlot"}));
  EXPECT_EQ(RunPciinfo({"instances", "--all", "VTQ_PCISlot"}).status, 2);
}

}  // namespace
