// SPDX-License-Identifier: Apache-2.0
#include "runtime/smbios_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "framework/exception.h"
#include "tests/runtime/failure_of.h"
#include "tests/runtime/smbios_bytes.h"

namespace vtq {
namespace {

const SmBiosBytes kBios = MakeStructure(0, {1, 2, 0, 0, 3}, {"Acme", "1.0"});
const SmBiosBytes kSlot = MakeStructure(9, {1, 5, 7, 3}, {"PCI 1"});
const SmBiosBytes kBare = MakeStructure(32, {0, 0});
const SmBiosBytes kEnd = MakeStructure(127, {});

std::vector<SmBiosBytes> Walked(const SmBiosTable& table) {
  std::vector<SmBiosBytes> structures;
  SmBiosWalk walk(table);
  while (const auto structure = walk.Next()) {
    structures.emplace_back(structure->begin(), structure->end());
  }
  EXPECT_FALSE(walk.Next()) << "a walk that has ended went on";
  return structures;
}

// A table with a `_SM_` entry point that states its real length and no number of structures.
std::vector<SmBiosBytes> WalkedBytes(const SmBiosBytes& bytes) {
  return Walked({{2, 7, bytes.size(), 0, false}, bytes});
}

std::string CorruptionOf(const SmBiosBytes& entry) {
  const Failure failure = FailureOf([&entry] { (void)ParseSmBiosEntryPoint(entry); });
  EXPECT_EQ(failure.code, NQZMVTQ20::TVTQStatusCode::kCorruptData);
  return failure.text;
}

void ExpectCorruptAtEveryCut(const SmBiosBytes& entry) {
  (void)ParseSmBiosEntryPoint(entry);
  for (std::size_t length = 0; length < entry.size(); ++length) CorruptionOf(CutTo(entry, length));
}

void ExpectCorruptWithAnyByteChanged(const SmBiosBytes& entry) {
  for (std::size_t index = 0; index < entry.size(); ++index) {
    SmBiosBytes changed = entry;
    changed[index] = static_cast<std::uint8_t>(changed[index] + 1);
    CorruptionOf(changed);
  }
}

TEST(SmBiosEntryPointTest, ReadsVersion2) {
  const SmBiosEntryPoint entry = ParseSmBiosEntryPoint(MakeVersion2Entry(2, 10, 0xABCD, 0x0123));
  EXPECT_EQ(entry.majorVersion, 2);
  EXPECT_EQ(entry.minorVersion, 10);
  EXPECT_EQ(entry.tableLength, 0xABCDU);
  EXPECT_EQ(entry.structureCount, 0x0123U);
  EXPECT_FALSE(entry.endsAtMarker);
}

TEST(SmBiosEntryPointTest, ReadsVersion3) {
  const SmBiosEntryPoint entry = ParseSmBiosEntryPoint(MakeVersion3Entry(3, 2, 0x12345678));
  EXPECT_EQ(entry.majorVersion, 3);
  EXPECT_EQ(entry.minorVersion, 2);
  EXPECT_EQ(entry.tableLength, 0x12345678U);
  EXPECT_EQ(entry.structureCount, 0U);
  EXPECT_TRUE(entry.endsAtMarker);
}

TEST(SmBiosEntryPointTest, ReadsTheBareFormWithItsVersionInBcd) {
  const SmBiosEntryPoint entry = ParseSmBiosEntryPoint(MakeLegacyEntry(0x21, 0x0456, 7));
  EXPECT_EQ(entry.majorVersion, 2);
  EXPECT_EQ(entry.minorVersion, 1);
  EXPECT_EQ(entry.tableLength, 0x0456U);
  EXPECT_EQ(entry.structureCount, 7U);
  EXPECT_FALSE(entry.endsAtMarker);
}

TEST(SmBiosEntryPointTest, TakesTheLengthThatVersion21Misstated) {
  SmBiosBytes entry = MakeVersion2Entry(2, 1, 0x100, 3);
  entry[0x05] = 0x1E;
  Seal(entry, 0, 0x1E, 0x04);
  EXPECT_EQ(ParseSmBiosEntryPoint(entry).minorVersion, 1);
  EXPECT_EQ(ParseSmBiosEntryPoint(CutTo(entry, 0x1E)).tableLength, 0x100U);
  entry[0x05] = 0x1D;
  Seal(entry, 0, 0x1D, 0x04);
  EXPECT_EQ(CorruptionOf(entry), "the SMBIOS entry point has an invalid length of 29 bytes");
}

TEST(SmBiosEntryPointTest, BytesBehindTheEntryPointDoNotMatter) {
  for (SmBiosBytes entry :
       {MakeVersion2Entry(2, 4, 1, 1), MakeVersion3Entry(3, 0, 1), MakeLegacyEntry(0x20, 1, 1)}) {
    entry.push_back(0xFF);
    EXPECT_EQ(ParseSmBiosEntryPoint(entry).tableLength, 1U);
  }
}

TEST(SmBiosEntryPointTest, AWrongChecksumIsCorrupt) {
  SmBiosBytes inner = MakeVersion2Entry(2, 4, 1, 1);
  inner[0x15] = static_cast<std::uint8_t>(inner[0x15] + 1);
  Seal(inner, 0, 0x1F, 0x04);
  EXPECT_EQ(CorruptionOf(inner), "the SMBIOS entry point has a wrong checksum");
  ExpectCorruptWithAnyByteChanged(MakeVersion2Entry(2, 4, 1, 1));
  ExpectCorruptWithAnyByteChanged(MakeVersion3Entry(3, 0, 1));
  ExpectCorruptWithAnyByteChanged(MakeLegacyEntry(0x20, 1, 1));
}

TEST(SmBiosEntryPointTest, AnEntryPointThatIsCutShortIsCorrupt) {
  ExpectCorruptAtEveryCut(MakeVersion2Entry(2, 4, 1, 1));
  ExpectCorruptAtEveryCut(MakeVersion3Entry(3, 0, 1));
  ExpectCorruptAtEveryCut(MakeLegacyEntry(0x20, 1, 1));
}

TEST(SmBiosEntryPointTest, ALengthThatReachesPastTheBytesIsCorrupt) {
  for (const auto& [entry, offset] : {std::pair{MakeVersion2Entry(2, 4, 1, 1), 0x05},
                                      std::pair{MakeVersion3Entry(3, 0, 1), 0x06}}) {
    SmBiosBytes longer = entry;
    longer[static_cast<std::size_t>(offset)] = 0xFF;
    EXPECT_EQ(CorruptionOf(longer), "the SMBIOS entry point is cut short");
  }
}

TEST(SmBiosEntryPointTest, AnUnknownAnchorIsCorrupt) {
  EXPECT_EQ(CorruptionOf({'_', 'X', 'M', '_', 0}),
            "the SMBIOS entry point does not begin with a known anchor");
  CorruptionOf({});
  SmBiosBytes inner = MakeVersion2Entry(2, 4, 1, 1);
  inner[0x10] = 'x';
  Seal(inner, 0x10, 0x0F, 0x15);
  Seal(inner, 0, 0x1F, 0x04);
  EXPECT_EQ(CorruptionOf(inner), "the SMBIOS entry point has no _DMI_ anchor inside");
}

TEST(SmBiosWalkTest, DeliversWholeStructuresInTableOrder) {
  EXPECT_EQ(WalkedBytes(Joined({kBios, kSlot, kBare, kSlot, kEnd})),
            (std::vector<SmBiosBytes>{kBios, kSlot, kBare, kSlot, kEnd}));
}

TEST(SmBiosWalkTest, AnEmptyTableHasNoStructures) { EXPECT_TRUE(WalkedBytes({}).empty()); }

TEST(SmBiosWalkTest, ATableCutAnywhereDeliversTheWholeStructuresBefore) {
  const SmBiosBytes table = Joined({kBios, kBare, kSlot});
  const std::size_t ends[] = {kBios.size(), kBios.size() + kBare.size(), table.size()};
  for (std::size_t length = 0; length <= table.size(); ++length) {
    const auto whole = static_cast<std::size_t>(std::count_if(
        std::begin(ends), std::end(ends), [length](std::size_t end) { return end <= length; }));
    EXPECT_EQ(Walked({{2, 7, table.size(), 3, false}, CutTo(table, length)}).size(), whole)
        << length;
    EXPECT_EQ(Walked({{2, 7, length, 3, false}, table}).size(), whole) << length;
  }
}

TEST(SmBiosWalkTest, ATableLargerThanTheEntryPointSaysEndsWhereItSays) {
  const SmBiosBytes table = Joined({kBios, kSlot});
  EXPECT_EQ(Walked({{2, 7, kBios.size(), 0, false}, table}).size(), 1U);
  EXPECT_EQ(Walked({{3, 0, kBios.size(), 0, true}, table}).size(), 1U);
}

TEST(SmBiosWalkTest, TheStructureCountEndsAVersion2Table) {
  const SmBiosBytes table = Joined({kBios, kSlot, kBare});
  EXPECT_EQ(Walked({{2, 7, table.size(), 2, false}, table}).size(), 2U);
  EXPECT_EQ(Walked({{2, 7, table.size(), 9, false}, table}).size(), 3U);
}

TEST(SmBiosWalkTest, TheEndMarkerIsTheLastOfAVersion3TableOnly) {
  const SmBiosBytes table = Joined({kBios, kEnd, kSlot});
  EXPECT_EQ(Walked({{3, 0, table.size(), 0, true}, table}),
            (std::vector<SmBiosBytes>{kBios, kEnd}));
  EXPECT_EQ(Walked({{2, 7, table.size(), 3, false}, table}).size(), 3U);
}

TEST(SmBiosWalkTest, AZeroFilledTailEndsTheTable) {
  EXPECT_EQ(WalkedBytes(Joined({kBios, SmBiosBytes(64, 0)})).size(), 1U);
}

TEST(SmBiosWalkTest, ALengthBelowFourEndsTheTable) {
  for (std::uint8_t length = 0; length < 4; ++length) {
    SmBiosBytes broken = kSlot;
    broken[1] = length;
    EXPECT_EQ(WalkedBytes(Joined({kBios, broken, kBare})).size(), 1U) << int{length};
  }
}

TEST(SmBiosWalkTest, AFormattedAreaThatReachesPastTheEndEndsTheTable) {
  SmBiosBytes broken = kSlot;
  broken[1] = 0xFF;
  EXPECT_EQ(WalkedBytes(Joined({kBios, broken})).size(), 1U);
}

TEST(SmBiosWalkTest, AStructureWithoutItsTwoZeroBytesIsNotDelivered) {
  SmBiosBytes table = Joined({kBios, kSlot});
  table.pop_back();
  EXPECT_EQ(WalkedBytes(CutTo(table, table.size())).size(), 1U);
  EXPECT_TRUE(WalkedBytes({0, 4, 0, 0}).empty());
  EXPECT_TRUE(WalkedBytes({0, 4, 0, 0, 0}).empty());
  EXPECT_EQ(WalkedBytes({0, 4, 0, 0, 0, 0}).size(), 1U);
}

TEST(SmBiosWalkTest, ZeroBytesInsideTheFormattedAreaEndNothing) {
  const SmBiosBytes zeros = MakeStructure(9, SmBiosBytes(20, 0), {"x"});
  EXPECT_EQ(WalkedBytes(Joined({zeros, kBare})), (std::vector<SmBiosBytes>{zeros, kBare}));
}

TEST(SmBiosWalkTest, ALengthThatCoversItsOwnStringsIsFollowed) {
  SmBiosBytes longer = kSlot;
  longer[1] = static_cast<std::uint8_t>(kSlot.size() - 2);
  EXPECT_EQ(WalkedBytes(Joined({longer, kBare})), (std::vector<SmBiosBytes>{longer, kBare}));
}

}  // namespace
}  // namespace vtq
