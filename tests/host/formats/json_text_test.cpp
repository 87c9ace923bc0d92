// SPDX-License-Identifier: Apache-2.0
#include "host/formats/json_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <random>

#include "host/console/utf8.h"
#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMReference;
using NQZMVTQ20::TCIMValue;

std::string Json(const TCIMValue& value) {
  OutputToText output;
  WriteJsonValue(output.Get(), value);
  return output.Text();
}

std::string JsonString(std::string_view bytes) {
  OutputToText output;
  WriteJsonString(output.Get(), bytes);
  return output.Text();
}

TEST(JsonText, EveryByteStringSurvivesARoundTrip) {
  for (int byte = 0; byte < 128; ++byte) {
    const std::string text = std::string("a") + static_cast<char>(byte) + "b";
    EXPECT_EQ(nlohmann::json::parse(JsonString(text)).get<std::string>(), text);
  }
}

TEST(JsonText, EscapesLikeTheLibrary) {
  std::mt19937 random(1);
  for (int i = 0; i < 20000; ++i) {
    std::string text(random() % 12, ' ');
    for (char& c : text) c = "\"\\a\n\t~} /\xc3\xa9\0"[random() % 12];
    EXPECT_EQ(JsonString(text), nlohmann::json(ToUtf8(text)).dump());
  }
}

TEST(JsonText, EscapesUnsafeCharactersAsUtf16) {
  EXPECT_EQ(JsonString("\x7f\xc2\x9b\xe2\x80\xae\xf3\xa0\x80\x81"),
            R"("\u007f\u009b\u202e\udb40\udc01")");
}

TEST(JsonText, InvalidUtf8IsReadAsLatin1) {
  EXPECT_EQ(JsonString("caf\xe9"), "\"caf\xc3\xa9\"");
  EXPECT_EQ(JsonString("caf\xc3\xa9"), "\"caf\xc3\xa9\"");
  EXPECT_EQ(JsonString("\xed\xa0\x80"), "\"\xc3\xad\xc2\xa0\\u0080\"");
}

TEST(JsonText, Scalars) {
  EXPECT_EQ(Json(TCIMValue()), "null");
  EXPECT_EQ(Json(TCIMValue(true)), "true");
  EXPECT_EQ(Json(TCIMValue(false)), "false");
  EXPECT_EQ(Json(TCIMValue(static_cast<std::uint8_t>(200))), "200");
  EXPECT_EQ(Json(TCIMValue(static_cast<std::int8_t>(-5))), "-5");
  EXPECT_EQ(Json(TCIMValue(std::numeric_limits<std::uint64_t>::max())), "18446744073709551615");
  EXPECT_EQ(Json(TCIMValue(0.5)), "0.5");
  EXPECT_EQ(Json(TCIMValue("a\"b")), "\"a\\\"b\"");
  EXPECT_EQ(Json(TCIMValue::DateTime("20240229123456.000000+060")),
            "\"20240229123456.000000+060\"");
}

TEST(JsonText, InfinityIsNull) {
  EXPECT_EQ(Json(TCIMValue(std::numeric_limits<double>::infinity())), "null");
}

TEST(JsonText, AReferenceIsItsPath) {
  const TCIMReference reference("root/cimv2", "C", {{"K", TCIMValue("v")}});
  EXPECT_EQ(Json(TCIMValue(reference)), R"("/root/cimv2:C.K=\"v\"")");
}

TEST(JsonText, Arrays) {
  const TCIMValue::TCIMType text(TCIMValue::TCIMType::kString);
  EXPECT_EQ(Json(TCIMValue(text, 0, {})), "[]");
  EXPECT_EQ(Json(TCIMValue(text, 3, {TCIMValue("a"), TCIMValue(), TCIMValue("b")})),
            R"(["a",null,"b"])");
}

}  // namespace
}  // namespace pciinfo
