// SPDX-License-Identifier: Apache-2.0
#include "host/capture/redact_smbios.h"

#include <gtest/gtest.h>

#include "framework/exception.h"
#include "tests/runtime/smbios_bytes.h"

namespace pciinfo {
namespace {

using vtq::Joined;
using vtq::MakeStructure;
using vtq::MakeVersion3Entry;
using vtq::SmBiosBytes;

std::string Text(const SmBiosBytes& bytes) { return {bytes.begin(), bytes.end()}; }

/// Returns the redacted table; makes a matching entry point for it.
std::string Redacted(const SmBiosBytes& table) {
  std::string text = Text(table);
  RedactSmBios(Text(MakeVersion3Entry(3, 2, table.size())), text);
  return text;
}

/// A structure of `length` bytes whose bytes at `offsets` hold 2, and all others 0.
SmBiosBytes WithSecondStringAt(int type, std::size_t length,
                               const std::vector<std::size_t>& offsets, const std::string& second) {
  SmBiosBytes body(length - 4);
  for (const std::size_t offset : offsets) body[offset - 4] = 2;
  return MakeStructure(type, body, {"kept", second, "kept too"});
}

struct FieldCase {
  int type;
  std::size_t length;
  std::size_t offset;
};

class RedactedString : public testing::TestWithParam<FieldCase> {};

TEST_P(RedactedString, IsBlankedAndNothingElse) {
  const auto [type, length, offset] = GetParam();
  EXPECT_EQ(Redacted(WithSecondStringAt(type, length, {offset}, "SN-12 34")),
            Text(WithSecondStringAt(type, length, {offset}, "XXXXXXXX")));
  // A structure of an earlier version that lacks the field.
  EXPECT_EQ(Redacted(WithSecondStringAt(type, offset, {}, "SN-12 34")),
            Text(WithSecondStringAt(type, offset, {}, "SN-12 34")));
}

INSTANTIATE_TEST_SUITE_P(Fields, RedactedString,
                         testing::Values(FieldCase{1, 8, 0x07}, FieldCase{2, 15, 0x07},
                                         FieldCase{2, 15, 0x08}, FieldCase{3, 22, 0x07},
                                         FieldCase{3, 22, 0x08}, FieldCase{4, 42, 0x20},
                                         FieldCase{4, 42, 0x21}, FieldCase{17, 40, 0x18},
                                         FieldCase{17, 40, 0x19}, FieldCase{22, 16, 0x07},
                                         FieldCase{39, 22, 0x08}, FieldCase{39, 22, 0x09}));

TEST(RedactSmBios, TheUuidIsCleared) {
  SmBiosBytes body(0x1B - 4, 0);
  for (std::size_t offset = 0x08; offset < 0x18; ++offset) body[offset - 4] = 0xAB;
  body[0x18 - 4] = 6;
  const std::string redacted = Redacted(MakeStructure(1, body));
  EXPECT_EQ(redacted.substr(0x08, 16), std::string(16, '\0'));
  EXPECT_EQ(redacted[0x18], 6);
  EXPECT_EQ(redacted.size(), 0x1BU + 2);
}

TEST(RedactSmBios, ATruncatedUuidIsCleared) {
  const std::string redacted = Redacted(MakeStructure(1, SmBiosBytes(8, 0xAB), {"kept"}));
  EXPECT_EQ(redacted.substr(4), std::string("\xAB\xAB\xAB\xAB\0\0\0\0kept\0\0", 14));
}

TEST(RedactSmBios, HostInterfacesAreCleared) {
  const std::string redacted = Redacted(MakeStructure(42, SmBiosBytes(20, 0xAB)));
  EXPECT_EQ(redacted.substr(4), std::string(22, '\0'));
}

TEST(RedactSmBios, OemStringsAreBlankedExceptSlots) {
  EXPECT_EQ(Redacted(MakeStructure(11, {3}, {"tag", "$T9 SID:0x01", "$T"})),
            Text(MakeStructure(11, {3}, {"XXX", "$T9 SID:0x01", "XX"})));
}

TEST(RedactSmBios, VendorStructuresAreBlankedAndKeepTheirLengths) {
  for (const int type : {126, 128, 221, 255}) {
    EXPECT_EQ(Redacted(MakeStructure(type, {1, 2, 3}, {"abc", "d"})),
              Text(MakeStructure(type, {0, 0, 0}, {"XXX", "X"})))
        << type;
  }
}

TEST(RedactSmBios, SlotsAndOtherStructuresStayAsTheyAre) {
  const SmBiosBytes table =
      Joined({MakeStructure(0, SmBiosBytes(20, 1), {"vendor", "version"}),
              MakeStructure(9, SmBiosBytes(13, 1), {"PCIE 1"}),
              MakeStructure(41, SmBiosBytes(7, 1), {"LAN"}), MakeStructure(127, {})});
  EXPECT_EQ(Redacted(table), Text(table));
}

TEST(RedactSmBios, EveryStructureIsReached) {
  const SmBiosBytes serial = WithSecondStringAt(2, 15, {7}, "SECRET");
  const std::string redacted = Redacted(Joined({serial, serial, serial, MakeStructure(127, {})}));
  EXPECT_EQ(redacted.find("SECRET"), std::string::npos);
}

TEST(RedactSmBios, WhatFollowsTheLastStructureIsCleared) {
  const SmBiosBytes table = Joined({MakeStructure(127, {}), {'S', 'E', 'C', 'R', 'E', 'T'}});
  EXPECT_EQ(Redacted(table), Text(Joined({MakeStructure(127, {}), SmBiosBytes(6)})));
}

TEST(RedactSmBios, DamagedTablesAreNotReadOutOfBounds) {
  const SmBiosBytes whole = Joined({WithSecondStringAt(2, 15, {7, 8}, "SECRET"),
                                    WithSecondStringAt(4, 42, {0x20}, "SECRET"),
                                    MakeStructure(200, {1, 2, 3}, {"SECRET"})});
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    const SmBiosBytes cut = vtq::CutTo(whole, length);
    EXPECT_EQ(Redacted(cut).size(), length);
    EXPECT_EQ(Redacted(cut).find("SECRET"), std::string::npos) << length;
  }
  for (std::size_t place = 0; place < whole.size(); ++place) {
    for (const int value : {0, 1, 3, 4, 127, 255}) {
      SmBiosBytes changed = whole;
      changed[place] = static_cast<std::uint8_t>(value);
      EXPECT_EQ(Redacted(changed).size(), whole.size());
    }
  }
}

TEST(RedactSmBios, AStringNumberWithoutAStringBlanksNothing) {
  SmBiosBytes body(11);
  body[7 - 4] = 9;
  EXPECT_EQ(Redacted(MakeStructure(2, body, {"kept"})), Text(MakeStructure(2, body, {"kept"})));
}

TEST(RedactSmBios, WithoutAValidEntryPointNothingCanBeRedacted) {
  std::string table = Text(MakeStructure(127, {}));
  EXPECT_THROW(RedactSmBios("", table), NQZMVTQ20::TVTQException);
  EXPECT_THROW(RedactSmBios("_SM3_", table), NQZMVTQ20::TVTQException);
}

}  // namespace
}  // namespace pciinfo
