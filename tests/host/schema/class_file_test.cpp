// SPDX-License-Identifier: Apache-2.0
#include "host/schema/class_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/fakes/pci_schema.h"
#include "tests/host/run_program.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using Schemas = std::vector<vtq::ClassSchema>;

constexpr const char* kExample = EXAMPLES "/network_ports/network_ports.classes.json";

/// A file that declares one class with the given members.
std::string WithClass(const std::string& members) { return R"({"classes":[{)" + members + "}]}"; }

/// A file that declares one class with a key and the given properties.
std::string WithProperty(const std::string& members) {
  return WithClass(R"("name":"A_B","properties":[{"name":"Id","type":"string","key":true},{)" +
                   members + "}]");
}

const Declarations kKnown = {{{"A_Known", "", "", {}}}, {{"A_Known", "known.json"}}};

std::string ErrorOf(const std::string& text) {
  try {
    ParseClasses(text, kKnown);
    return "no error";
  } catch (const ClassFileError& error) {
    return error.what();
  }
}

TEST(ClassFile, ReadsClassesAndProperties) {
  const Schemas classes =
      ParseClasses(
          R"({"classes":[{"name":"A_Fan","superclass":"CIM_Fan","description":"Blows.","properties":[
         {"name":"Id","type":"string","key":true,"description":"Name."},
         {"name":"Speeds","type":"uint32","array":true}]}]})",
          {})
          .classes;
  ASSERT_EQ(classes.size(), 1U);
  EXPECT_EQ(classes[0].name, "A_Fan");
  EXPECT_EQ(classes[0].superclass, "CIM_Fan");
  EXPECT_EQ(classes[0].description, "Blows.");
  ASSERT_EQ(classes[0].properties.size(), 2U);
  const vtq::PropertySchema& id = classes[0].properties[0];
  EXPECT_EQ(id.name, "Id");
  EXPECT_TRUE(id.isKey);
  EXPECT_FALSE(id.isArray);
  EXPECT_EQ(id.description, "Name.");
  EXPECT_STREQ(id.type.GetName(), "string");
  const vtq::PropertySchema& speeds = classes[0].properties[1];
  EXPECT_FALSE(speeds.isKey);
  EXPECT_TRUE(speeds.isArray);
  EXPECT_STREQ(speeds.type.GetName(), "uint32");
}

TEST(ClassFile, ReadsEveryType) {
  for (const std::string type :
       {"boolean", "uint8", "uint16", "uint32", "uint64", "sint8", "sint16", "sint32", "sint64",
        "real32", "real64", "string", "datetime"}) {
    const Schemas classes =
        ParseClasses(WithProperty(R"("name":"P","type":")" + type + "\""), {}).classes;
    EXPECT_EQ(classes.at(0).properties.at(1).type.GetName(), type);
  }
}

TEST(ClassFile, ReferencesNameDeclaredClassesAndTakeTheirSpelling) {
  const Schemas classes =
      ParseClasses(WithProperty(R"("name":"P","type":"reference","targets":["a_known","A_B"])"),
                   kKnown)
          .classes;
  EXPECT_THAT(classes.at(0).properties.at(1).targets, ElementsAre("A_Known", "A_B"));
}

TEST(ClassFile, ErrorsNameThePlace) {
  EXPECT_THAT(ErrorOf("{"), HasSubstr("line 1, column 2"));
  EXPECT_THAT(ErrorOf("[]"), HasSubstr("top level: expected an object, found array"));
  EXPECT_THAT(ErrorOf("{}"), HasSubstr("classes: no class is declared"));
  EXPECT_THAT(ErrorOf(R"({"classes":3})"), HasSubstr("expected an array, found number"));
  EXPECT_THAT(ErrorOf(WithClass("")), HasSubstr("classes[0].name: expected a name of letters"));
  EXPECT_THAT(ErrorOf(WithClass(R"("name":"1a")")),
              HasSubstr("classes[0].name: expected a name of letters"));
  EXPECT_THAT(ErrorOf(WithClass(R"("name":"A_B","super":"C")")),
              HasSubstr("classes[0]: unknown member \"super\"; the members are name, superclass"));
  EXPECT_THAT(ErrorOf(WithClass(R"("name":"A_B","superclass":"x y")")),
              HasSubstr("classes[0].superclass: expected a name"));
  EXPECT_THAT(
      ErrorOf(WithClass(R"("name":"a_known")")),
      HasSubstr("classes[0].name: class \"a_known\" is already declared by known.json: leave "
                "out one of the two files"));
  EXPECT_THAT(
      ErrorOf(R"({"classes":[{"name":"A","properties":[{"name":"P","type":"uint8","key":true}]},
                                     {"name":"A"}]})"),
      HasSubstr("classes[1].name: class \"A\" is already declared in this file: remove one"));
  EXPECT_THAT(ErrorOf(WithClass(R"("name":"A_B")")), HasSubstr("classes[0]: no property is a key"));
}

TEST(ClassFile, SaysWhatIsWrongWithAProperty) {
  const std::string place = "classes[0].properties[1]";
  EXPECT_THAT(ErrorOf(WithProperty(R"("name":"P")")), HasSubstr(place + ".type: expected a type"));
  EXPECT_THAT(ErrorOf(WithProperty(R"("name":"P","type":"int")")), HasSubstr("expected a type"));
  EXPECT_THAT(ErrorOf(WithProperty(R"("name":"ID","type":"string")")),
              HasSubstr(place + ".name: property \"Id\" is already declared"));
  EXPECT_THAT(ErrorOf(WithProperty(R"("name":"P","type":"string","key":"yes")")),
              HasSubstr(place + ".key: expected true or false, found string"));
  EXPECT_THAT(ErrorOf(WithProperty(R"("name":"P","type":"string","key":true,"array":true)")),
              HasSubstr("an array cannot be a key"));
  EXPECT_THAT(ErrorOf(WithProperty(R"("name":"P","type":"reference")")),
              HasSubstr("only references have \"targets\""));
  EXPECT_THAT(ErrorOf(WithProperty(R"("name":"P","type":"reference","targets":["A_No"])")),
              HasSubstr(place + ".targets[0]: no class of that name is declared before"));
  EXPECT_THAT(ErrorOf(WithProperty(R"("name":"P","type":"reference","targets":[1])")),
              HasSubstr(place + ".targets[0]: no class of that name"));
}

TEST(ClassFile, DeeplyNestedTextIsAnError) {
  EXPECT_THAT(ErrorOf(std::string(500000, '[')), HasSubstr("nested too deeply"));
}

TEST(ClassFile, AMemberThatIsThereTwiceIsAnError) {
  EXPECT_THAT(ErrorOf(WithClass(R"("name":"A_B","name":"A_C")")),
              HasSubstr("member \"name\" is there twice"));
}

TEST(ClassFile, ReadsNamesOfValuesInTheOrderOfTheValues) {
  const Schemas classes =
      ParseClasses(
          WithProperty(R"("name":"P","type":"uint8","values":{"10":"ten","0":"none","9":"nine"})"),
          {})
          .classes;
  const auto& values = classes.at(0).properties.at(1).values;
  ASSERT_EQ(values.size(), 3U);
  EXPECT_EQ(values[0].value, 0U);
  EXPECT_EQ(values[0].meaning, "none");
  EXPECT_EQ(values[1].value, 9U);
  EXPECT_EQ(values[2].value, 10U);
  EXPECT_EQ(values[2].meaning, "ten");
}

TEST(ClassFile, SaysWhatIsWrongWithNamesOfValues) {
  const auto errorOf = [](const std::string& type, const std::string& values) {
    return ErrorOf(WithProperty(R"("name":"P","type":")" + type + R"(","values":)" + values));
  };
  const std::string place = "classes[0].properties[1].values";
  EXPECT_THAT(errorOf("uint8", "3"), HasSubstr(place + ": expected an object, found number"));
  EXPECT_THAT(errorOf("string", R"({"1":"one"})"), HasSubstr(place + ": only properties of type"));
  for (const std::string number : {"256", "-1", "01", "", "0x1", "1 ", "99999999999"}) {
    EXPECT_THAT(errorOf("uint8", "{\"" + number + "\":\"x\"}"),
                HasSubstr(place + ": expected a number from 0 to 255, found \"" + number + "\""));
  }
  EXPECT_EQ(errorOf("uint8", R"({"255":"x"})"), "no error");
  EXPECT_EQ(errorOf("uint16", R"({"65535":"x"})"), "no error");
  EXPECT_THAT(errorOf("uint16", R"({"65536":"x"})"), HasSubstr("from 0 to 65535"));
  EXPECT_EQ(errorOf("uint32", R"({"4294967295":"x"})"), "no error");
  EXPECT_THAT(errorOf("uint32", R"({"4294967296":"x"})"), HasSubstr("from 0 to 4294967295"));
  EXPECT_THAT(errorOf("uint8", R"({"1":2})"),
              HasSubstr(place + ".1: expected a string, found number"));
}

TEST(ClassFile, ReadsOverridesAndTheCommonTarget) {
  const Schemas classes =
      ParseClasses(WithProperty(R"("name":"P","type":"reference","override":"Part",
                                   "targets":["A_Known","A_B"],"commonTarget":"CIM_Part")"),
                   kKnown)
          .classes;
  EXPECT_EQ(classes.at(0).properties.at(1).overrides, "Part");
  EXPECT_EQ(classes.at(0).properties.at(1).commonTarget, "CIM_Part");
  EXPECT_EQ(classes.at(0).properties.at(0).overrides, "");
  EXPECT_THAT(ErrorOf(WithProperty(R"("name":"P","type":"uint8","override":"a b")")),
              HasSubstr("classes[0].properties[1].override: expected a name"));
  EXPECT_THAT(ErrorOf(WithProperty(
                  R"("name":"P","type":"reference","targets":["A_Known"],"commonTarget":"C")")),
              HasSubstr("only references with several \"targets\" have a \"commonTarget\""));
}

TEST(ClassFile, AddsTheClassesOfAFileToThoseDeclaredBefore) {
  Declarations declared{PciSchema(), {}};
  EXPECT_THAT(ReadClassFile(kExample, declared), ElementsAre("ACME_NetworkPort"));
  ASSERT_EQ(declared.classes.size(), 8U);
  EXPECT_EQ(declared.classes.back().name, "ACME_NetworkPort");
  EXPECT_EQ(declared.files.at("ACME_NetworkPort"), kExample);
  EXPECT_EQ(LoadClasses(kExample).size(), 1U);
}

TEST(ClassFile, ReadsWhetherItsClassesArePrintedOnRequestOnly) {
  const std::string classes =
      R"("classes":[{"name":"A_Fan","properties":[{"name":"Id","type":"string","key":true}]}])";
  EXPECT_FALSE(ParseClasses("{" + classes + "}", {}).onRequest);
  EXPECT_TRUE(ParseClasses(R"({"onRequest":true,)" + classes + "}", {}).onRequest);
  EXPECT_THAT(ErrorOf(R"({"onRequest":1,)" + classes + "}"),
              HasSubstr("top level.onRequest: expected true or false, found number"));
}

TEST(ClassFile, ProgramNamesAnInvalidFile) {
  for (const std::string command : {"instances", "classes", "schema"}) {
    const RunResult missing = RunFake("fixed", {command, "--class-file", "/nowhere/a.json"});
    EXPECT_EQ(missing.status, 1) << command;
    EXPECT_THAT(missing.err, HasSubstr("/nowhere/a.json: No such file or directory"));
    const RunResult twice =
        RunFake("fixed", {command, "--class-file", kExample, "--class-file", kExample});
    EXPECT_THAT(twice.err, HasSubstr("network_ports.classes.json: classes[0].name: class"));
    EXPECT_EQ(twice.out, "");
  }
  EXPECT_THAT(RunFake("fixed", {"classes", "--class-file", "/etc"}).err,
              HasSubstr("/etc: Is a directory"));
}

TEST(ClassFile, ProgramShowsTheClassesOfFiles) {
  EXPECT_THAT(RunFake("fixed", {"classes", "--class-file", kExample}).out,
              HasSubstr("ACME_NetworkPort : CIM_NetworkPort\n  A network interface"));
  EXPECT_THAT(RunPciinfo({"schema", "--class-file", kExample}).out,
              HasSubstr("class ACME_NetworkPort : CIM_NetworkPort"));
  const RunResult none = RunFake(
      "fixed", {"instances", "ACME_NetworkPort", "--format", "json", "--class-file", kExample});
  EXPECT_EQ(none.status, 0) << none.err;
  EXPECT_EQ(none.out, "{\"instances\":[]}\n");
}

}  // namespace
}  // namespace pciinfo
