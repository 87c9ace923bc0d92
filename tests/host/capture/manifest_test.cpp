// SPDX-License-Identifier: Apache-2.0
#include "host/capture/manifest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace pciinfo {
namespace {

using testing::HasSubstr;

std::string FailureOf(const std::string& json) {
  try {
    ParseManifest(json);
    return "none";
  } catch (const BadCapture& failure) {
    return failure.what();
  }
}

TEST(Manifest, RoundTripKeepsEverything) {
  const Manifest manifest{"box.example.org",
                          "6.1.0",
                          "2026-01-31T23:59:59Z",
                          {{"lspci", "lspci version 3.9.0"}, {"pciinfo", "1.0.0"}},
                          true,
                          {{"proc/bus/pci/00/00.0", "Permission denied"}},
                          7};
  const Manifest read = ParseManifest(ManifestJson(manifest));
  EXPECT_EQ(read.systemName, manifest.systemName);
  EXPECT_EQ(read.kernelRelease, manifest.kernelRelease);
  EXPECT_EQ(read.capturedAt, manifest.capturedAt);
  EXPECT_EQ(read.tools, manifest.tools);
  EXPECT_TRUE(read.redacted);
  ASSERT_EQ(read.unread.size(), 1U);
  EXPECT_EQ(read.unread[0].path, "proc/bus/pci/00/00.0");
  EXPECT_EQ(read.unread[0].reason, "Permission denied");
  EXPECT_EQ(read.parts, 7U);
}

TEST(Manifest, ACountOfPartsIsACount) {
  for (const char* parts : {"-1", "1.5", "true", "\"7\"", "null"}) {
    EXPECT_THAT(FailureOf(R"({"formatVersion": 1, "parts": )" + std::string(parts) + "}"),
                HasSubstr("its parts is not a count"))
        << parts;
  }
}

TEST(Manifest, TheManifestOfThisMachineIsComplete) {
  const auto json = nlohmann::json::parse(ManifestJson(DescribeThisMachine()));
  EXPECT_EQ(json["formatVersion"], 1);
  EXPECT_NE(json["systemName"], "");
  EXPECT_NE(json["kernelRelease"], "");
  EXPECT_EQ(json["tools"]["pciinfo"], PCIINFO_VERSION);
  EXPECT_THAT(json["tools"]["lspci"].get<std::string>(), HasSubstr("lspci version"));
  EXPECT_THAT(json["capturedAt"].get<std::string>(), testing::MatchesRegex("20..-..-..T..:..:..Z"));
  EXPECT_EQ(json["redacted"], false);
  EXPECT_EQ(json["unread"], nlohmann::json::array());
}

TEST(Manifest, BytesThatAreNoUtf8AreWritten) {
  Manifest manifest;
  manifest.unread = {{"a\xFF", "b"}};
  EXPECT_EQ(ParseManifest(ManifestJson(manifest)).unread[0].path, "a\xC3\xBF");
}

TEST(Manifest, OnlyTheVersionIsRequired) {
  const Manifest manifest = ParseManifest(R"({"formatVersion": 1, "new key": [1, 2]})");
  EXPECT_EQ(manifest.systemName, "");
  EXPECT_FALSE(manifest.redacted);
  EXPECT_TRUE(manifest.unread.empty());
}

TEST(Manifest, AnotherVersionIsRefused) {
  EXPECT_EQ(FailureOf(R"({"formatVersion": 2})"),
            "its format version is 2, but this program reads only version 1");
}

TEST(Manifest, AVersionIsAnInteger) {
  for (const char* version : {"true", "1.0", "1.5", "1e30", "null", "[1]"}) {
    EXPECT_THAT(FailureOf(std::string(R"({"formatVersion": )") + version + "}"),
                HasSubstr("its formatVersion is not an integer"))
        << version;
  }
  EXPECT_THAT(FailureOf(R"({"formatVersion": 4294967297})"), HasSubstr("version is 4294967297"));
  EXPECT_THAT(FailureOf(R"({"formatVersion": -1})"), HasSubstr("version is -1"));
}

TEST(Manifest, DeepNestingIsRefused) {
  const auto nested = [](const std::string& key, std::size_t depth) {
    return R"({"formatVersion": 1, ")" + key + "\": " + std::string(depth, '[') +
           std::string(depth, ']') + "}";
  };
  for (const char* key : {"unread", "new key"}) {
    EXPECT_THAT(FailureOf(nested(key, 500'000)), HasSubstr("nested too deeply")) << key;
  }
  EXPECT_EQ(FailureOf(nested("new key", 20)), "none");
}

TEST(Manifest, OtherTextsAreRefused) {
  for (const char* json :
       {"", "{", "[]", "1", "{}", R"({"formatVersion": "1"})", R"({"formatVersion": 1} x)",
        R"({"formatVersion": 1, "systemName": 5})", R"({"formatVersion": 1, "unread": [5]})",
        R"({"formatVersion": 1, "tools": []})"}) {
    EXPECT_THAT(FailureOf(json), HasSubstr("manifest.json is damaged")) << json;
  }
  EXPECT_THAT(FailureOf(std::string(500'000, '[')), HasSubstr("damaged"));
}

TEST(Manifest, AnInvalidSystemNameIsRefused) {
  for (const char* name : {"a b", "a\\nb", "a\\u0000b", "\\u00e9"}) {
    EXPECT_THAT(FailureOf(std::string(R"({"formatVersion": 1, "systemName": ")") + name + R"("})"),
                HasSubstr("systemName"))
        << name;
  }
  EXPECT_THAT(FailureOf(R"({"formatVersion": 1, "systemName": ")" + std::string(254, 'a') + "\"}"),
              HasSubstr("systemName"));
}

}  // namespace
}  // namespace pciinfo
