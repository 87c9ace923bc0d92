// SPDX-License-Identifier: Apache-2.0
#include "host/formats/cim_xml_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/cim_xml_document.h"
#include "tests/host/hostile_repository.h"
#include "tests/host/written.h"

namespace pciinfo {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

void ExpectValidAndSame(const vtq::Namespace& repository) {
  const CimXmlDocument document(Written("cim-xml", repository));
  EXPECT_TRUE(document.IsValid());
  EXPECT_EQ(document.ToJson(), AsXmlCarries(json::parse(Written("json", repository))));
}

TEST(CimXmlWriter, WritesAnInstanceWithItsLocalPath) {
  EXPECT_EQ(Written("cim-xml", *MakeFixedRepository(), {"QZMSG_PCIRawData"}),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<CIM CIMVERSION=\"2.7\" DTDVERSION=\"2.4\"><DECLARATION><DECLGROUP.WITHPATH>\n"
            "<VALUE.OBJECTWITHLOCALPATH><LOCALINSTANCEPATH><LOCALNAMESPACEPATH>"
            "<NAMESPACE NAME=\"root\"></NAMESPACE><NAMESPACE NAME=\"cimv2\"></NAMESPACE>"
            "</LOCALNAMESPACEPATH><INSTANCENAME CLASSNAME=\"QZMSG_PCIRawData\">"
            "<KEYBINDING NAME=\"Command\"><KEYVALUE VALUETYPE=\"string\" TYPE=\"string\">"
            "lspci -xxxx</KEYVALUE></KEYBINDING></INSTANCENAME></LOCALINSTANCEPATH>"
            "<INSTANCE CLASSNAME=\"QZMSG_PCIRawData\"><PROPERTY NAME=\"Command\" TYPE=\"string\">"
            "<VALUE>lspci -xxxx</VALUE></PROPERTY>"
            "<PROPERTY.ARRAY NAME=\"RawResult\" TYPE=\"string\"><VALUE.ARRAY>"
            "<VALUE>00:00.0 &quot;quoted&quot; \\ and\ttabbed</VALUE><VALUE></VALUE>"
            "<VALUE>caf\xc3\xa9</VALUE></VALUE.ARRAY></PROPERTY.ARRAY></INSTANCE>"
            "</VALUE.OBJECTWITHLOCALPATH>\n"
            "<VALUE.OBJECTWITHLOCALPATH><LOCALINSTANCEPATH><LOCALNAMESPACEPATH>"
            "<NAMESPACE NAME=\"root\"></NAMESPACE><NAMESPACE NAME=\"cimv2\"></NAMESPACE>"
            "</LOCALNAMESPACEPATH><INSTANCENAME CLASSNAME=\"QZMSG_PCIRawData\">"
            "<KEYBINDING NAME=\"Command\"><KEYVALUE VALUETYPE=\"string\" TYPE=\"string\">"
            "lspci -vvv</KEYVALUE></KEYBINDING></INSTANCENAME></LOCALINSTANCEPATH>"
            "<INSTANCE CLASSNAME=\"QZMSG_PCIRawData\"><PROPERTY NAME=\"Command\" TYPE=\"string\">"
            "<VALUE>lspci -vvv</VALUE></PROPERTY>"
            "<PROPERTY.ARRAY NAME=\"RawResult\" TYPE=\"string\"></PROPERTY.ARRAY></INSTANCE>"
            "</VALUE.OBJECTWITHLOCALPATH>\n"
            "</DECLGROUP.WITHPATH></DECLARATION></CIM>\n");
}

TEST(CimXmlWriter, IsValidAndHasTheSameContentAsJson) {
  ExpectValidAndSame(*MakeFixedRepository());
  ExpectValidAndSame(*MakeHostileRepository());
  ExpectValidAndSame(*MakeEmptyRepository());
}

TEST(CimXmlWriter, WritesWhatStrictReadersAccept) {
  const std::string text = Written("cim-xml", *MakeHostileRepository());
  EXPECT_THAT(text, StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<CIM "));
  EXPECT_THAT(text, Not(HasSubstr("/>")));
  EXPECT_THAT(text, Not(HasSubstr("<![CDATA[")));
  EXPECT_THAT(text, HasSubstr("<VALUE>two\nlines</VALUE>"));
  EXPECT_THAT(text, HasSubstr("<VALUE>  blanks around  </VALUE>"));
}

TEST(CimXmlWriter, RefersByNumberToUnsafeCharactersOnly) {
  EXPECT_THAT(Written("cim-xml", *MakeFixedRepository()), Not(HasSubstr("&#")));
  EXPECT_THAT(Written("cim-xml", *MakeHostileRepository()),
              HasSubstr("<VALUE>mac&#13;dos&#13;\nend</VALUE>"));
}

TEST(CimXmlWriter, AnUnsetPropertyHasNoValue) {
  EXPECT_THAT(Written("cim-xml", *MakeHostileRepository()),
              testing::AllOf(HasSubstr("<PROPERTY NAME=\"boolean\" TYPE=\"boolean\"></PROPERTY>"),
                             HasSubstr("<PROPERTY.ARRAY NAME=\"booleans\" TYPE=\"boolean\">"
                                       "</PROPERTY.ARRAY>"),
                             HasSubstr("<PROPERTY.REFERENCE NAME=\"Other\">"
                                       "</PROPERTY.REFERENCE>")));
}

TEST(CimXmlWriter, KeysHaveAValueType) {
  EXPECT_THAT(
      Written("cim-xml", *MakeHostileRepository(), {"Hostile_Link"}),
      HasSubstr("<KEYBINDING NAME=\"Count\"><KEYVALUE VALUETYPE=\"numeric\" TYPE=\"sint16\">-7"
                "</KEYVALUE></KEYBINDING><KEYBINDING NAME=\"Flag\"><KEYVALUE "
                "VALUETYPE=\"boolean\" TYPE=\"boolean\">FALSE</KEYVALUE></KEYBINDING>"
                "<KEYBINDING NAME=\"Target\"><VALUE.REFERENCE><LOCALINSTANCEPATH>"));
}

TEST(CimXmlWriter, AReferenceNamesItsClass) {
  EXPECT_THAT(Written("cim-xml", *MakeFixedRepository(), {"QZMSG_DeviceInSlot"}),
              HasSubstr("<PROPERTY.REFERENCE NAME=\"Antecedent\" "
                        "REFERENCECLASS=\"QZMSG_SystemSlot\"><VALUE.REFERENCE>"));
}

}  // namespace
}  // namespace pciinfo
