// SPDX-License-Identifier: Apache-2.0
#include "host/formats/json_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/fakes/fewer_if_sanitized.h"
#include "tests/host/hostile_repository.h"
#include "tests/host/written.h"

namespace pciinfo {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// An instance of Hostile_Everything with the key "k" and more properties.
std::string Everything(const std::string& properties) {
  return R"({"class":"Hostile_Everything","path":"/root/cimv2:Hostile_Everything.Key=\"k\"",)"
         R"("properties":{"Key":"k")" +
         (properties.empty() ? "" : "," + properties) + "}}";
}

std::string Document(const std::string& instances) { return "{\"instances\":[" + instances + "]}"; }

std::string Failure(const std::string& text) {
  try {
    ReadInstances(text, *MakeEmptyHostileRepository());
    return "no failure";
  } catch (const JsonInputError& error) {
    return error.what();
  }
}

/// The error for an instance with this property.
std::string PropertyFailure(const std::string& property) {
  return Failure(Document(Everything(property)));
}

void ExpectSameAfterReading(const std::string& format, const vtq::Namespace& written,
                            vtq::Namespace& empty) {
  const std::string text = Written(format, written);
  ReadInstances(text, empty);
  EXPECT_EQ(Written(format, empty), text);
}

TEST(JsonReader, ReadsAnInventoryBackUnchanged) {
  for (const char* format : {"json", "jsonl"}) {
    ExpectSameAfterReading(format, *MakeFixedRepository(), *MakeEmptyRepository());
    ExpectSameAfterReading(format, *MakeHostileRepository(), *MakeEmptyHostileRepository());
  }
  ExpectSameAfterReading("json", *MakeEmptyRepository(), *MakeEmptyRepository());
}

TEST(JsonReader, ValuesHaveTheirDeclaredTypes) {
  const auto repository = MakeEmptyRepository();
  const auto original = MakeFixedRepository();
  ReadInstances(Written("json", *original), *repository);
  for (const char* name : {"QZMSG_PCIDevice", "QZMSG_SystemSlot", "QZMSG_DeviceInSlot"}) {
    const auto& read = repository->Find(name)->GetInstances();
    const auto& wanted = original->Find(name)->GetInstances();
    ASSERT_EQ(read.size(), wanted.size());
    for (std::size_t i = 0; i < read.size(); ++i) {
      EXPECT_EQ(read[i]->GetObjectReference({}), wanted[i]->GetObjectReference({}));
    }
  }
  const auto& slot = repository->Find("QZMSG_SystemSlot")->GetInstances().front();
  EXPECT_EQ(
      slot->GetProperty("Number", {}).value,
      original->Find("QZMSG_SystemSlot")->GetInstances().front()->GetProperty("Number", {}).value);
}

TEST(JsonReader, IgnoresLayoutAndUnknownKeys) {
  const auto repository = MakeEmptyHostileRepository();
  ReadInstances(
      "\n {\n \"new\": 1,\n \"instances\": [\n" + Everything("\"uint8\" : 3") + "\n]\n}\n",
      *repository);
  EXPECT_EQ(repository->Find("Hostile_Everything")->GetInstances().size(), 1U);
}

TEST(JsonReader, NullLeavesAPropertyUnset) {
  const auto repository = MakeEmptyHostileRepository();
  ReadInstances(Everything("\"real64\":null"), *repository);
  EXPECT_TRUE(repository->Find("Hostile_Everything")
                  ->GetInstances()
                  .front()
                  ->GetProperty("real64", {})
                  .value.IsNull());
}

TEST(JsonReader, IgnoresBlankLinesBetweenJsonLines) {
  const auto repository = MakeEmptyHostileRepository();
  ReadInstances(Everything("") + "\r\n\n  \n", *repository);
  EXPECT_EQ(repository->Find("Hostile_Everything")->GetInstances().size(), 1U);
}

TEST(JsonReader, RefusesOtherInput) {
  EXPECT_EQ(Failure(""), "the input is empty");
  EXPECT_EQ(Failure(" \n\n"), "the input is empty");
  EXPECT_THAT(Failure("[]"), HasSubstr("not the output of \"pciinfo instances\""));
  EXPECT_THAT(Failure("{\n\"slots\":[],\"onBoard\":[]}"),
              HasSubstr("the array \"instances\" is missing"));
  EXPECT_THAT(Failure(R"({"instances":7})"), HasSubstr("the array \"instances\" is missing"));
  EXPECT_THAT(Failure(R"({"slots":[],"onBoard":[]})"),
              HasSubstr("the array \"instances\" is missing"));
}

TEST(JsonReader, SyntaxErrorsNameLineAndColumn) {
  EXPECT_THAT(Failure("{\"instances\":[\n{,]}"), StartsWith("parse error at line 2, column 2: "));
  EXPECT_THAT(Failure(Everything("") + "\n{\"class\""),
              StartsWith("line 2: parse error at column 9: "));
  EXPECT_THAT(Failure("\x01\x02"), StartsWith("parse error at line 1, column 1: "));
  EXPECT_THAT(Failure(Document("\"caf\xe9\"")), HasSubstr("UTF-8"));
}

TEST(JsonReader, MembersOfAnInstanceAreChecked) {
  EXPECT_EQ(Failure(Document("7")), "instances[0]: 7 is not an object");
  EXPECT_EQ(Failure(Document("{}")), "instances[0]: \"class\" is missing");
  EXPECT_EQ(Failure(Document(R"({"class":1})")), "instances[0].class: 1 is not of type string");
  EXPECT_EQ(Failure(Document(R"({"class":"C"})")), "instances[0].class: unknown class \"C\"");
  EXPECT_EQ(Failure(Document(R"({"class":"Hostile_Link"})")),
            "instances[0]: \"properties\" is missing");
  EXPECT_EQ(Failure(Document(R"({"class":"Hostile_Link","properties":[]})")),
            "instances[0].properties: an array is not of type object");
  EXPECT_EQ(Failure(Document(Everything("") + ",{}")), "instances[1]: \"class\" is missing");
  EXPECT_EQ(Failure(Everything("") + "\n{}"), "line 2: \"class\" is missing");
}

TEST(JsonReader, TypesAndRangesOfPropertiesAreChecked) {
  const std::string at = "instances[0].properties.";
  EXPECT_EQ(PropertyFailure("\"colour\":1"),
            at + "colour: the class Hostile_Everything has no property colour");
  EXPECT_EQ(PropertyFailure("\"uint8\":256"), at + "uint8: 256 is not of type uint8");
  EXPECT_EQ(PropertyFailure("\"uint8\":-1"), at + "uint8: -1 is not of type uint8");
  EXPECT_EQ(PropertyFailure("\"sint64\":9223372036854775808"),
            at + "sint64: 9223372036854775808 is not of type sint64");
  EXPECT_EQ(PropertyFailure("\"uint64\":1.5"), at + "uint64: 1.5 is not of type uint64");
  EXPECT_EQ(PropertyFailure("\"uint64\":\"1\""), at + "uint64: \"1\" is not of type uint64");
  EXPECT_EQ(PropertyFailure("\"boolean\":1"), at + "boolean: 1 is not of type boolean");
  EXPECT_EQ(PropertyFailure("\"string\":true"), at + "string: true is not of type string");
  EXPECT_EQ(PropertyFailure("\"string\":[]"), at + "string: an array is not of type string");
  EXPECT_EQ(PropertyFailure("\"strings\":\"a\""), at + "strings: \"a\" is not an array");
  EXPECT_EQ(PropertyFailure("\"strings\":[\"a\",[]]"),
            at + "strings[1]: an array is not of type string");
  EXPECT_THAT(PropertyFailure("\"datetime\":\"now\""), StartsWith(at + "datetime: \"now\" is no"));
}

TEST(JsonReader, RefusesDeepNesting) {
  constexpr std::size_t kDepth = FewerIfSanitized(300000);
  const std::string nested = std::string(kDepth, '[') + std::string(kDepth, ']');
  EXPECT_EQ(Failure(Document(nested)), "instances[0]: an array is not an object");
  EXPECT_EQ(PropertyFailure("\"uint8\":" + nested),
            "instances[0].properties.uint8: an array is not of type uint8");
}

TEST(JsonReader, LongValuesAreCutInMessages) {
  const std::string failure = PropertyFailure("\"uint8\":\"" + std::string(1000, 'x') + "\"");
  EXPECT_LT(failure.size(), 150U);
  EXPECT_THAT(failure, testing::EndsWith("... is not of type uint8"));
}

TEST(JsonReader, PathsMustMatchTheKeysAndBeUnique) {
  const std::string other = R"({"class":"Hostile_Everything","path":"x","properties":{"Key":"k"}})";
  EXPECT_EQ(Failure(Document(other)),
            "instances[0].path: does not match the keys; expected "
            "/root/cimv2:Hostile_Everything.Key=\"k\"");
  EXPECT_THAT(Failure(Document(R"({"class":"Hostile_Everything","path":"x","properties":{}})")),
              HasSubstr("Key is a key and not set"));
  EXPECT_EQ(Failure(Document(Everything("") + "," + Everything(""))),
            "instances[1].path: an earlier instance has the same path");
}

TEST(JsonReader, ReferencesAreChecked) {
  const auto link = [](const std::string& target) {
    return Failure(Document(R"({"class":"Hostile_Link","path":"","properties":{"Target":")" +
                            target + "\"}}"));
  };
  EXPECT_EQ(link("x"), "instances[0].properties.Target: expected \"/root/cimv2:\" at \"x\"");
  EXPECT_THAT(link(R"(/root/cimv2:Hostile_Link.Flag=TRUE,Count=1,Target=\"/root/cimv2:)"
                   R"(Hostile_Everything.Key=\\\"\\\"\")"),
              HasSubstr("may not name an instance of Hostile_Link"));
}

}  // namespace
}  // namespace pciinfo
