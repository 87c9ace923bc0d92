// SPDX-License-Identifier: Apache-2.0
#include "host/schema/mof_schema.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/fakes/pci_schema.h"
#include "tests/host/fixed_repository.h"
#include "tests/host/run_program.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;
using testing::HasSubstr;
using Type = TCIMValue::TCIMType;

std::string Declared(const std::vector<vtq::ClassSchema>& classes) {
  OutputToText output;
  WriteMofSchema(output.Get(), classes);
  const std::string text = output.Text();
  return text.substr(text.find('\n') + 1);
}

TEST(MofSchema, AClassWithItsQualifiers) {
  vtq::PropertySchema coded{"Codes", Type(Type::kUint16), true, false, {}, "Some \"codes\"."};
  coded.values = {{1, "One"}, {20, "Two\\Three"}};
  vtq::PropertySchema spelled{"AnId", Type(Type::kUint8), false, false, {}, "An ID."};
  spelled.overrides = "AnID";
  EXPECT_EQ(
      Declared({{"A",
                 "B",
                 "An A.",
                 {{"Key", Type(Type::kString), false, true, {}, "The key."}, spelled, coded}}}),
      R"(
[Description ( "An A." )]
class A : B {
    [Key,
     Description ( "The key." )]
  string Key;

    [Override ( "AnID" ),
     Description ( "An ID." )]
  uint8 AnId;

    [Description ( "Some \"codes\"." ),
     ValueMap {
        "1", "20" },
     Values {
        "One", "Two\\Three" }]
  uint16 Codes[];
};
)");
}

TEST(MofSchema, AssociationsHaveTheQualifierAndReferencesNameOneClass) {
  const std::string text = Declared(PciSchema());
  EXPECT_THAT(text,
              HasSubstr("[Association, Description ( \"A PCI function and the slot that holds "
                        "it.\" )]\nclass QZMSG_DeviceInSlot : CIM_Realizes {\n"
                        "    [Key,\n     Override ( \"Antecedent\" ),\n"));
  EXPECT_THAT(text, HasSubstr("\n  QZMSG_SystemSlot REF Antecedent;\n"));
  EXPECT_THAT(text, HasSubstr("\n  CIM_LogicalDevice REF Dependent;\n"));
}

TEST(MofSchema, AllClassesAreDeclaredInOrder) {
  std::vector<std::string> wanted;
  for (const vtq::ClassSchema& schema : PciSchema()) {
    wanted.push_back("class " + schema.name +
                     (schema.superclass.empty() ? "" : " : " + schema.superclass) + " {");
  }
  std::vector<std::string> found;
  for (const std::string& line : LinesOf(Declared(PciSchema()))) {
    if (line.starts_with("class ")) found.push_back(line);
  }
  EXPECT_EQ(found, wanted);
}

TEST(MofSchema, LongListsAreFolded) {
  for (const std::string& line : LinesOf(Declared(PciSchema()))) {
    const bool isDescription = line.find("Description") != std::string::npos;
    EXPECT_TRUE(isDescription || line.size() <= 103) << line;
  }
  EXPECT_THAT(Declared(PciSchema()),
              HasSubstr("     ValueMap {\n        \"0\", \"1\", \"2\", \"3\", "
                        "\"4\", \"5\" },\n     Values {\n"));
}

}  // namespace
}  // namespace pciinfo
