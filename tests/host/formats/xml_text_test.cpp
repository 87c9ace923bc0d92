// SPDX-License-Identifier: Apache-2.0
#include "host/formats/xml_text.h"

#include <gtest/gtest.h>

#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

std::string TextElement(std::string_view bytes) {
  XmlText xml;
  xml.Open("E");
  xml.Text(bytes);
  xml.Close();
  OutputToText output;
  xml.MoveTo(output.Get());
  return output.Text();
}

TEST(XmlText, EscapesMarkupWithNamedEntities) {
  EXPECT_EQ(TextElement("]]> <&\"'"), "<E>]]&gt; &lt;&amp;&quot;'</E>");
}

TEST(XmlText, KeepsBlanksAndLineFeeds) { EXPECT_EQ(TextElement(" a\tb\n "), "<E> a\tb\n </E>"); }

TEST(XmlText, ReplacesCharactersThatXmlForbids) {
  EXPECT_EQ(TextElement(std::string("\0\x01\x1f", 3)),
            "<E>\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd</E>");
  EXPECT_EQ(TextElement("\xef\xbf\xbe\xef\xbf\xbf"), "<E>\xef\xbf\xbd\xef\xbf\xbd</E>");
}

TEST(XmlText, RefersToUnsafeCharactersByNumber) {
  EXPECT_EQ(TextElement("a\r\x7f\xc2\x9b<\xe2\x80\xae\xf3\xa0\x80\x81"),
            "<E>a&#13;&#127;&#155;&lt;&#8238;&#917505;</E>");
}

TEST(XmlText, InvalidUtf8IsReadAsLatin1) {
  EXPECT_EQ(TextElement("caf\xe9"), "<E>caf\xc3\xa9</E>");
  EXPECT_EQ(TextElement("\xf0\x9f\x98\x80"), "<E>\xf0\x9f\x98\x80</E>");
}

TEST(XmlText, AttributesAreEscapedAndEveryElementHasAnEndTag) {
  XmlText xml;
  xml.Begin();
  xml.Open("A", {{"X", "<\"&"}});
  xml.Open("B");
  xml.Close();
  xml.Close();
  xml.EndLine();
  OutputToText output;
  xml.MoveTo(output.Get());
  EXPECT_EQ(output.Text(),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<A X=\"&lt;&quot;&amp;\"><B></B></A>\n");
}

TEST(XmlText, MoveToWritesEachTextOnce) {
  XmlText xml;
  OutputToText output;
  xml.Open("A");
  xml.Text("1");
  xml.MoveTo(output.Get());
  xml.Text("2");
  xml.Close();
  xml.MoveTo(output.Get());
  EXPECT_EQ(output.Text(), "<A>12</A>");
}

}  // namespace
}  // namespace pciinfo
