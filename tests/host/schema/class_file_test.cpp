#include "host/schema/class_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/run_program.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using Schemas = std::vector<vtq::ClassSchema>;

constexpr const char* kExample = EXAMPLES "/network_ports/network_ports.json";

/// A file that declares one class with the given members.
std::string WithClass(const std::string& members) { return R"({"classes":[{)" + members + "}]}"; }

/// A file that declares one class with a key and the given properties.
std::string WithProperty(const std::string& members) {
  return WithClass(R"("name":"A_B","properties":[{"name":"Id","type":"string","key":true},{)" +
                   members + "}]");
}

std::string ErrorOf(const std::string& text) {
  try {
    ParseClasses(text, {{"A_Known", "", "", {}}});
    return "no error";
  } catch (const ClassFileError& error) {
    return error.what();
  }
}

TEST(ClassFile, ReadsClassesAndProperties) {
  const Schemas classes = ParseClasses(
      R"({"classes":[{"name":"A_Fan","superclass":"CIM_Fan","description":"Blows.","properties":[
         {"name":"Id","type":"string","key":true,"description":"Name."},
         {"name":"Speeds","type":"uint32","array":true}]}]})",
      {});
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
    const Schemas classes = ParseClasses(WithProperty(R"("name":"P","type":")" + type + "\""), {});
    EXPECT_EQ(classes.at(0).properties.at(1).type.GetName(), type);
  }
}

TEST(ClassFile, ReferencesNameDeclaredClassesAndTakeTheirSpelling) {
  const Schemas classes =
      ParseClasses(WithProperty(R"("name":"P","type":"reference","targets":["a_known","A_B"])"),
                   {{"A_Known", "", "", {}}});
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
  EXPECT_THAT(ErrorOf(WithClass(R"("name":"a_known")")),
              HasSubstr("classes[0].name: class \"a_known\" is already declared"));
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
  EXPECT_THAT(ErrorOf(std::string(500000, '[')), HasSubstr("line 1"));
}

TEST(ClassFile, AddsTheClassesOfFilesAfterTheBuiltInOnes) {
  const Schemas classes = DeclaredClasses({kExample});
  ASSERT_EQ(classes.size(), 8U);
  EXPECT_EQ(classes.back().name, "ACME_NetworkPort");
  EXPECT_EQ(DeclaredClasses({}).size(), 7U);
}

TEST(ClassFile, ProgramNamesAnInvalidFile) {
  for (const std::string command : {"instances", "classes", "schema"}) {
    const RunResult missing = RunFake("fixed", {command, "--class-file", "/nowhere/a.json"});
    EXPECT_EQ(missing.status, 1) << command;
    EXPECT_THAT(missing.err, HasSubstr("/nowhere/a.json: No such file or directory"));
    const RunResult twice =
        RunFake("fixed", {command, "--class-file", kExample, "--class-file", kExample});
    EXPECT_THAT(twice.err, HasSubstr("network_ports.json: classes[0].name: class"));
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
