// SPDX-License-Identifier: Apache-2.0
#include "host/formats/yaml_writer.h"

#include <gtest/gtest.h>
#include <yaml-cpp/yaml.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/host/hostile_repository.h"
#include "tests/host/written.h"

namespace pciinfo {
namespace {

using nlohmann::json;

/// A quoted node is a string; the writer leaves only numbers, booleans and null unquoted, which
/// parse as JSON.
json ScalarJson(const YAML::Node& node) {
  if (node.Tag() == "!") return node.Scalar();
  return json::parse(node.Scalar());
}

json JsonOf(const YAML::Node& node) {
  if (node.IsNull()) return nullptr;
  if (node.IsScalar()) return ScalarJson(node);
  json converted = node.IsMap() ? json::object() : json::array();
  if (node.IsMap()) {
    for (const auto& member : node) converted[member.first.Scalar()] = JsonOf(member.second);
  } else {
    for (const auto& element : node) converted.push_back(JsonOf(element));
  }
  return converted;
}

/// Parses JSON after replacing U+FFFE, a noncharacter, by U+FFFD, as the YAML library does.
json AsYamlCarries(std::string text) {
  const std::string noCharacter = "\\ufffe";
  for (std::size_t at = 0; (at = text.find(noCharacter)) != std::string::npos;) {
    text.replace(at, noCharacter.size(), "\\ufffd");
  }
  return json::parse(text);
}

void ExpectYamlLikeJson(const vtq::Namespace& repository) {
  EXPECT_EQ(JsonOf(YAML::Load(Written("yaml", repository))),
            AsYamlCarries(Written("json", repository)));
}

TEST(YamlWriter, WritesSeveralClassesInOneList) {
  EXPECT_EQ(Written("yaml", *MakeFixedRepository(), {"QZMSG_SystemBoard", "QZMSG_PCIRawData"}),
            R"(instances:
- class: "QZMSG_SystemBoard"
  path: "/root/cimv2:QZMSG_SystemBoard.CreationClassName=\"QZMSG_SystemBoard\",DeviceID=\"SystemBoard1\",SystemCreationClassName=\"CIM_ComputerSystem\",SystemName=\"box\""
  properties:
    CreationClassName: "QZMSG_SystemBoard"
    DeviceID: "SystemBoard1"
    ElementName: "SystemBoard1"
    SystemCreationClassName: "CIM_ComputerSystem"
    SystemName: "box"
- class: "QZMSG_PCIRawData"
  path: "/root/cimv2:QZMSG_PCIRawData.Command=\"lspci -xxxx\""
  properties:
    Command: "lspci -xxxx"
    RawResult:
      - "00:00.0 \"quoted\" \\ and\ttabbed"
      - ""
      - "caf\xe9"
- class: "QZMSG_PCIRawData"
  path: "/root/cimv2:QZMSG_PCIRawData.Command=\"lspci -vvv\""
  properties:
    Command: "lspci -vvv"
)");
}

TEST(YamlWriter, HasTheSameContentAsJson) {
  ExpectYamlLikeJson(*MakeFixedRepository());
  ExpectYamlLikeJson(*MakeHostileRepository());
}

TEST(YamlWriter, IsPrintableAscii) {
  const std::string text = Written("yaml", *MakeHostileRepository());
  EXPECT_TRUE(std::all_of(text.begin(), text.end(),
                          [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); }));
}

TEST(YamlWriter, WithoutInstancesTheListIsEmpty) {
  EXPECT_EQ(Written("yaml", *MakeEmptyRepository()), "instances: []\n");
}

}  // namespace
}  // namespace pciinfo
