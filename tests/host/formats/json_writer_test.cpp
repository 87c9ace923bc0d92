// SPDX-License-Identifier: Apache-2.0
#include "host/formats/json_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/host/fixed_repository.h"
#include "tests/host/run_program.h"

namespace pciinfo {
namespace {

using nlohmann::json;
using testing::ElementsAre;

std::string WrittenJson(const std::string& format, const std::vector<std::string>& classes,
                        const vtq::Namespace& repository) {
  OutputToText output;
  WriteInstances(repository, classes, *MakeInstanceWriter(format, output.Get()));
  return output.Text();
}

TEST(JsonWriter, WritesOneDocumentWithOneInstancePerLine) {
  const std::string text =
      WrittenJson("json", {"QZMSG_PCIBridge", "QZMSG_PCIDevice"}, *MakeFixedRepository());
  const json document = json::parse(text);
  ASSERT_EQ(document["instances"].size(), 5U);
  EXPECT_EQ(document["instances"][0]["class"], "QZMSG_PCIBridge");
  EXPECT_EQ(document["instances"][4]["class"], "QZMSG_PCIDevice");
  EXPECT_EQ(LinesOf(text).size(), 7U);
}

TEST(JsonWriter, AnInstanceHasClassPathAndTheSetProperties) {
  const json document =
      json::parse(WrittenJson("json", {"QZMSG_SystemSlot"}, *MakeFixedRepository()));
  EXPECT_EQ(document["instances"][0], json::parse(R"({
    "class": "QZMSG_SystemSlot",
    "path": "/root/cimv2:QZMSG_SystemSlot.CreationClassName=\"QZMSG_SystemSlot\",Tag=\"Tag 1\"",
    "properties": {"CreationClassName": "QZMSG_SystemSlot", "Tag": "Tag 1", "Number": 7,
                   "CurrentUsage": 4, "ConnectorType": [182], "MaxDataWidth": 13,
                   "SlotDesignation": "PCIEX16_1   ", "SupportsHotPlug": false}})"));
  EXPECT_FALSE(document["instances"][2]["properties"].contains("SlotDesignation"));
}

TEST(JsonWriter, PropertiesAreInByteOrderOfTheirNames) {
  const std::string text = WrittenJson("jsonl", {"QZMSG_PCIDevice"}, *MakeFixedRepository());
  const auto instance = nlohmann::ordered_json::parse(LinesOf(text).front());
  std::vector<std::string> names;
  for (const auto& [name, value] : instance["properties"].items()) names.push_back(name);
  EXPECT_THAT(names, ElementsAre("ClassCode", "CreationClassName", "Description", "DeviceID",
                                 "Location", "MEMAddress", "PciDeviceID", "Revision",
                                 "SystemCreationClassName", "SystemName", "UINumber", "VendorID"));
}

TEST(JsonWriter, ReferencesArePathTexts) {
  const json document = json::parse(
      WrittenJson("json", {"QZMSG_DeviceInSlot", "QZMSG_SystemSlot"}, *MakeFixedRepository()));
  EXPECT_EQ(document["instances"][0]["properties"]["Antecedent"], document["instances"][1]["path"]);
}

TEST(JsonWriter, InvalidUtf8IsReadAsLatin1) {
  const json document =
      json::parse(WrittenJson("json", {"QZMSG_PCIRawData"}, *MakeFixedRepository()));
  EXPECT_EQ(document["instances"][0]["properties"]["RawResult"],
            json({"00:00.0 \"quoted\" \\ and\ttabbed", "", "caf\xc3\xa9"}));
}

TEST(JsonWriter, WithoutInstancesWritesAnEmptyDocument) {
  EXPECT_EQ(json::parse(WrittenJson("json", {"QZMSG_PCIDevice"}, *MakeEmptyRepository())),
            json::parse(R"({"instances": []})"));
}

TEST(JsonLinesWriter, WritesOneObjectPerLine) {
  const auto repository = MakeFixedRepository();
  const std::vector<std::string> lines =
      LinesOf(WrittenJson("jsonl", {"QZMSG_SystemBoard", "QZMSG_PCIBridge"}, *repository));
  ASSERT_EQ(lines.size(), 3U);
  const json document =
      json::parse(WrittenJson("json", {"QZMSG_SystemBoard", "QZMSG_PCIBridge"}, *repository));
  for (std::size_t i = 0; i < lines.size(); ++i) {
    EXPECT_EQ(json::parse(lines[i]), document["instances"][i]);
  }
}

TEST(JsonLinesWriter, WritesNothingForNoInstances) {
  EXPECT_EQ(WrittenJson("jsonl", {"QZMSG_PCIDevice"}, *MakeEmptyRepository()), "");
}

}  // namespace
}  // namespace pciinfo
