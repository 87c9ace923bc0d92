// SPDX-License-Identifier: Apache-2.0
#include "host/formats/mof_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "host/console/utf8.h"
#include "tests/host/hostile_repository.h"
#include "tests/host/written.h"

namespace pciinfo {
namespace {

using nlohmann::json;

/// Reads "instance of" declarations exactly as DSP0004 defines them and fails on anything else.
class MofReader {
 public:
  explicit MofReader(std::string_view text) : rest_(text) {}

  json Read() {
    json instances = json::array();
    for (SkipBlanks(); !rest_.empty(); SkipBlanks()) instances.push_back(ReadInstance());
    return instances;
  }

 private:
  json ReadInstance() {
    Expect("instance");
    Expect("of");
    json instance = {{"class", TakeWord()}, {"properties", json::object()}};
    Expect("{");
    while (!Accept("}")) {
      const std::string name = TakeWord();
      Expect("=");
      instance["properties"][name] = Accept("{") ? ReadArray() : ReadScalar();
      Expect(";");
    }
    Expect(";");
    return instance;
  }

  json ReadArray() {
    json elements = json::array();
    if (Accept("}")) return elements;
    do {
      elements.push_back(ReadScalar());
    } while (Accept(","));
    Expect("}");
    return elements;
  }

  json ReadScalar() {
    SkipBlanks();
    if (rest_.starts_with("\"")) return ReadString();
    const std::string word = TakeWord();
    if (word == "TRUE" || word == "FALSE") return word == "TRUE";
    return word == "NULL" ? json() : json::parse(word);
  }

  std::string ReadString() {
    std::string text;
    for (rest_.remove_prefix(1); !rest_.starts_with("\""); rest_.remove_prefix(1)) {
      const auto byte = static_cast<unsigned char>(rest_.at(0));
      if (byte < 0x20 || byte == 0x7F) throw std::runtime_error("a bare control character");
      if (rest_.front() == '\\') {
        rest_.remove_prefix(1);
        AppendEscaped(text);
      } else {
        text += rest_.front();
      }
    }
    rest_.remove_prefix(1);
    return text;
  }

  void AppendEscaped(std::string& text) {
    const std::string_view letters = "btnfr\"\\";
    const std::string_view characters = "\b\t\n\f\r\"\\";
    if (rest_.at(0) == 'x') {
      AppendUtf8(text, TakeUtf16());
    } else {
      text += characters.at(letters.find(rest_.front()));
    }
  }

  /// Reads the digits of one escape, or of two that are one character. The last digit stays.
  char32_t TakeUtf16() {
    const char32_t unit = TakeUnit();
    if (unit < 0xD800 || unit > 0xDBFF) return unit;
    rest_.remove_prefix(1);
    if (!rest_.starts_with("\\x")) throw std::runtime_error("half a character");
    rest_.remove_prefix(1);
    return 0x10000 + ((unit - 0xD800) << 10) + (TakeUnit() - 0xDC00);
  }

  char32_t TakeUnit() {
    const std::string digits(rest_.substr(1, 4));
    rest_.remove_prefix(4);
    return static_cast<char32_t>(std::stoul(digits, nullptr, 16));
  }

  std::string TakeWord() {
    SkipBlanks();
    const std::size_t length = std::min(rest_.find_first_of(" \n{};,="), rest_.size());
    std::string word(rest_.substr(0, length));
    rest_.remove_prefix(length);
    return word;
  }

  void SkipBlanks() {
    while (rest_.starts_with(" ") || rest_.starts_with("\n")) rest_.remove_prefix(1);
  }

  bool Accept(std::string_view text) {
    SkipBlanks();
    if (!rest_.starts_with(text)) return false;
    rest_.remove_prefix(text.size());
    return true;
  }

  void Expect(std::string_view text) {
    if (!Accept(text)) throw std::runtime_error("no " + std::string(text));
  }

  std::string_view rest_;
};

void ExpectMofLikeJson(const vtq::Namespace& repository) {
  json instances = json::parse(Written("json", repository))["instances"];
  for (json& instance : instances) instance.erase("path");
  EXPECT_EQ(MofReader(Written("mof", repository)).Read(), instances);
}

TEST(MofWriter, WritesOneDeclarationPerInstance) {
  EXPECT_EQ(Written("mof", *MakeFixedRepository(), {"QZMSG_SystemBoard", "QZMSG_PCIRawData"}),
            R"(instance of QZMSG_SystemBoard {
    CreationClassName = "QZMSG_SystemBoard";
    DeviceID = "SystemBoard1";
    ElementName = "SystemBoard1";
    SystemCreationClassName = "CIM_ComputerSystem";
    SystemName = "box";
};

instance of QZMSG_PCIRawData {
    Command = "lspci -xxxx";
    RawResult = {
        "00:00.0 \"quoted\" \\ and\ttabbed",
        "",
        "café" };
};

instance of QZMSG_PCIRawData {
    Command = "lspci -vvv";
};
)");
}

TEST(MofWriter, NumberArraysAreOnOneLine) {
  EXPECT_NE(Written("mof", *MakeFixedRepository()).find("    ConnectorType = { 182 };\n"),
            std::string::npos);
}

TEST(MofWriter, AReferenceIsAnObjectPath) {
  EXPECT_NE(Written("mof", *MakeFixedRepository(), {"QZMSG_DeviceInSlot"})
                .find(R"(    Antecedent = "/root/cimv2:QZMSG_SystemSlot.CreationClassName=)"
                      R"(\"QZMSG_SystemSlot\",Tag=\"Tag 1\"";)"),
            std::string::npos);
}

TEST(MofWriter, HasTheSameContentAsJson) {
  ExpectMofLikeJson(*MakeFixedRepository());
  ExpectMofLikeJson(*MakeHostileRepository());
}

TEST(MofWriter, WritesNothingForNoInstances) {
  EXPECT_EQ(Written("mof", *MakeEmptyRepository()), "");
}

}  // namespace
}  // namespace pciinfo
