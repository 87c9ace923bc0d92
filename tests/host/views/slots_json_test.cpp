// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/views/slots_view.h"
#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

using nlohmann::json;

json Document(const SlotsModel& model) {
  OutputToText output;
  WriteSlotsJson(output.Get(), model);
  return json::parse(output.Text());
}

TEST(SlotsJson, NestsFunctionsInTheirSlot) {
  const json document = Document(ReadSlots(*MakeFixedRepository()));
  ASSERT_EQ(document["slots"].size(), 3U);
  const json device = json::parse(R"({
    "address": "01:00.0", "kind": "device", "class": {"base": 3, "text": "Display controller"}, "vendorID": 4318, "pciDeviceID": 7040, "revision": 161,
    "description": "VGA compatible controller: NVIDIA Corporation GP104",
    "path": "/root/cimv2:QZMSG_PCIDevice.CreationClassName=\"QZMSG_PCIDevice\",DeviceID=\"PCI Bus  1, device   0, function  0\",SystemCreationClassName=\"CIM_ComputerSystem\",SystemName=\"box\""})");
  EXPECT_EQ(document["slots"][0]["functions"], json::array({device}));
}

TEST(SlotsJson, CodesHaveNamesAndTextsAreNotTrimmed) {
  json slot = Document(ReadSlots(*MakeFixedRepository()))["slots"][0];
  slot.erase("functions");
  EXPECT_EQ(slot, json::parse(R"({
    "tag": "Tag 1", "designation": "PCIEX16_1   ", "id": 7, "hotPlug": false,
    "type": {"code": 182, "text": "PCI Express 3 x16"}, "usage": {"code": 4, "text": "In use"},
    "width": {"code": 13, "text": "x16"},
    "path": "/root/cimv2:QZMSG_SystemSlot.CreationClassName=\"QZMSG_SystemSlot\",Tag=\"Tag 1\""})"));
}

TEST(SlotsJson, UnprintableBytesAreKept) {
  const json document = Document(ReadSlots(*MakeFixedRepository()));
  EXPECT_EQ(document["slots"][1]["designation"], "J\x01 a designation that never wants to end");
}

TEST(SlotsJson, UnsetPropertiesAreAbsent) {
  const json document = Document(ReadSlots(*MakeFixedRepository()));
  EXPECT_FALSE(document["slots"][2].contains("designation"));
  EXPECT_EQ(document["slots"][2]["functions"], json::array());
}

TEST(SlotsJson, ListsTheBoard) {
  const json document = Document(ReadSlots(*MakeFixedRepository()));
  ASSERT_EQ(document["onBoard"].size(), 4U);
  EXPECT_EQ(document["onBoard"][0]["kind"], "bridge");
  EXPECT_EQ(document["onBoard"][3]["description"], "Audio device: Fa\xc3\xa7onn\xc3\xa9");
}

TEST(SlotsJson, IsADocumentEvenIfEmpty) {
  EXPECT_EQ(Document({}), json::parse(R"({"slots": [], "onBoard": []})"));
}

}  // namespace
}  // namespace pciinfo
