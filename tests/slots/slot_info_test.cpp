// SPDX-License-Identifier: Apache-2.0
#include "slots/slot_info.h"

#include <new>

#include "framework/exception.h"
#include "plugin/class_names.h"
#include "tests/fakes/plugin_fixture.h"
#include "tests/fakes/slot_record.h"

using NQZMVTQ20::TVTQException;

class SlotInfoTest : public PluginTest {
 protected:
  void PutSlots(const std::vector<SlotRecord>& slots) {
    for (const SlotRecord& slot : slots) Fake().smBios.structures.push_back(slot.Bytes());
  }

  std::vector<TPropertyMap> Read() { return Make<TSlotInfo>(kSystemSlotClass).GetSlotInfo(); }

  TPropertyMap ReadOne(const SlotRecord& slot) {
    PutSlots({slot});
    const std::vector<TPropertyMap> slots = Read();
    EXPECT_EQ(slots.size(), 1U);
    return slots.at(0);
  }

  static std::vector<std::string> Tags(const std::vector<TPropertyMap>& slots) {
    std::vector<std::string> tags;
    for (const TPropertyMap& slot : slots) tags.push_back(Text(slot, "Tag"));
    return tags;
  }
};

using Lines = std::vector<std::string>;
using Values = std::vector<unsigned>;

TEST_F(SlotInfoTest, DecodesEveryProperty) {
  SlotRecord record;
  record.slotId = 0x1234;
  record.characteristics1 = 0x0E;
  record.characteristics2 = 0x03;
  const TPropertyMap slot = ReadOne(record);
  EXPECT_EQ(slot.size(), 16U);
  EXPECT_EQ(Number(slot, "Number"), 4660U);
  EXPECT_EQ(Text(slot, "CreationClassName"), "QZMSG_SystemSlot");
  EXPECT_EQ(Text(slot, "Tag"), "Tag 1");
  EXPECT_EQ(Text(slot, "Description"), "System Slot");
  EXPECT_EQ(Number(slot, "CurrentUsage"), 4U);
  EXPECT_EQ(Number(slot, "SlotLength"), 4U);
  EXPECT_EQ(Numbers(slot.at("OperationalStatus")), Values{2});
  EXPECT_EQ(Texts(slot.at("StatusDescriptions")), Lines{"Slot is in use"});
  EXPECT_EQ(Numbers(slot.at("ConnectorType")), Values{0xA5});
  EXPECT_EQ(Number(slot, "MaxDataWidth"), 0x0DU);
  EXPECT_TRUE(static_cast<bool>(slot.at("PMESignal")));
  EXPECT_TRUE(static_cast<bool>(slot.at("Shared")));
  EXPECT_EQ(Text(slot, "SlotDesignation"), "PCIe Slot 1");
  EXPECT_EQ(Text(slot, "SlotAllInfo"), "PCIe Slot 1,Tag 1");
  EXPECT_TRUE(static_cast<bool>(slot.at("SupportsHotPlug")));
  EXPECT_EQ(Numbers(slot.at("VccMixedVoltageSupport")), (Values{3, 2}));
}

TEST_F(SlotInfoTest, ClearedBitsAreFalse) {
  SlotRecord record;
  record.characteristics1 = 0xF7;
  record.characteristics2 = 0xFC;
  const TPropertyMap slot = ReadOne(record);
  EXPECT_FALSE(static_cast<bool>(slot.at("Shared")));
  EXPECT_FALSE(static_cast<bool>(slot.at("PMESignal")));
  EXPECT_FALSE(static_cast<bool>(slot.at("SupportsHotPlug")));
}

TEST_F(SlotInfoTest, SlotWithoutDesignationHasATagAndTakesIt) {
  SlotRecord none;
  none.designation = 0;
  PutSlots({none, SlotRecord()});
  const std::vector<TPropertyMap> slots = Read();
  EXPECT_EQ(slots[0].count("SlotDesignation"), 0U);
  EXPECT_EQ(slots[0].count("SlotAllInfo"), 0U);
  EXPECT_EQ(Tags(slots), (Lines{"Tag 1", "Tag 2"}));
}

TEST_F(SlotInfoTest, EmptyStringSetGivesTheNullString) {
  SlotRecord record;
  record.designation = 2;
  record.strings = {};
  const TPropertyMap slot = ReadOne(record);
  EXPECT_EQ(Text(slot, "SlotDesignation"), "(null string)");
  EXPECT_EQ(Text(slot, "SlotAllInfo"), "(null string),Tag 1");
}

TEST_F(SlotInfoTest, DesignationThatIsTheFifthTagStandsAlone) {
  SlotRecord fifth;
  fifth.strings = {"Tag 5"};
  PutSlots({SlotRecord(), SlotRecord(), SlotRecord(), SlotRecord(), fifth});
  EXPECT_EQ(Text(Read().at(4), "SlotAllInfo"), "Tag 5");
}

TEST_F(SlotInfoTest, UsageZeroAndFiveAreUnknown) {
  for (const std::uint8_t usage : {std::uint8_t{0}, std::uint8_t{5}}) {
    Fake().smBios.structures.clear();
    SlotRecord record;
    record.currentUsage = usage;
    const TPropertyMap slot = ReadOne(record);
    EXPECT_EQ(Number(slot, "CurrentUsage"), usage);
    EXPECT_EQ(Numbers(slot.at("OperationalStatus")), Values{0});
    EXPECT_EQ(Texts(slot.at("StatusDescriptions")), Lines{"Unknown"});
  }
}

TEST_F(SlotInfoTest, SharedAloneHasNoVoltage) {
  SlotRecord record;
  record.characteristics1 = 0x08;
  const TPropertyMap slot = ReadOne(record);
  EXPECT_TRUE(static_cast<bool>(slot.at("Shared")));
  EXPECT_EQ(Numbers(slot.at("VccMixedVoltageSupport")), Values{0});
}

TEST_F(SlotInfoTest, TranslatesDataBusWidthCodesOnRequestOnly) {
  TSlotInfo collector = Make<TSlotInfo>(kSystemSlotClass);
  EXPECT_EQ(collector.GetSlotDataBusWidth(2), 1);
  EXPECT_EQ(collector.GetSlotDataBusWidth(1), 0);
  EXPECT_EQ(collector.GetSlotDataBusWidth(8), 0);
  SlotRecord record;
  record.dataBusWidth = 3;
  EXPECT_EQ(Number(ReadOne(record), "MaxDataWidth"), 3U);
}

TEST_F(SlotInfoTest, EmptyListsMakeArraysWithoutElements) {
  TSlotInfo collector = Make<TSlotInfo>(kSystemSlotClass);
  for (const auto& value : {collector.GetWordCimValue({}), collector.GetStrCimValue({})}) {
    EXPECT_FALSE(value.IsNull());
    EXPECT_TRUE(value.GetArray().empty());
  }
}

TEST_F(SlotInfoTest, PeerGroupsRepeatTheSlotWithTagsOfTheirOwn) {
  SlotRecord record;
  record.length = 0x13;
  record.peerCount = 2;
  PutSlots({record});
  std::vector<TPropertyMap> slots = Read();
  ASSERT_EQ(slots.size(), 3U);
  EXPECT_EQ(Tags(slots), (Lines{"Tag 1", "Tag 2", "Tag 3"}));
  EXPECT_EQ(Text(slots[2], "SlotAllInfo"), "PCIe Slot 1,Tag 3");
  for (TPropertyMap& slot : slots) {
    slot.erase("Tag");
    slot.erase("SlotAllInfo");
  }
  EXPECT_EQ(slots[0], slots[1]);
  EXPECT_EQ(slots[0], slots[2]);
}

TEST_F(SlotInfoTest, PeerCountOfNineOrMoreOrNegativeIsNone) {
  for (const int count : {9, 0x7F, 0x80, 0xFF}) {
    Fake().smBios.structures.clear();
    SlotRecord record;
    record.peerCount = static_cast<std::uint8_t>(count);
    PutSlots({record});
    EXPECT_EQ(Read().size(), 1U) << count;
  }
}

TEST_F(SlotInfoTest, SeventeenByteStructureTakesThePeerCountFromWhatFollows) {
  SlotRecord record;
  record.length = 0x11;
  record.strings = {"\x01\x03"};  // the second character is at offset 0x12
  PutSlots({record});
  EXPECT_EQ(Read().size(), 4U);
}

TEST_F(SlotInfoTest, StructuresOfOtherTypesAreSkipped) {
  std::vector<unsigned char> other = SlotRecord().Bytes();
  other[0] = 4;
  Fake().smBios.structures = {SlotRecord().Bytes(), other, SlotRecord().Bytes()};
  Fake().smBios.deliversAllTypes = true;
  EXPECT_EQ(Tags(Read()), (Lines{"Tag 1", "Tag 2"}));
}

TEST_F(SlotInfoTest, TagsGoOnWithinOneObjectAndStartAgainInTheNext) {
  PutSlots({SlotRecord()});
  TSlotInfo collector = Make<TSlotInfo>(kSystemSlotClass);
  collector.GetSlotInfo();
  EXPECT_EQ(Tags(collector.GetSlotInfo()), Lines{"Tag 2"});
  EXPECT_EQ(Tags(Read()), Lines{"Tag 1"});
}

TEST_F(SlotInfoTest, UnreadableTablesAreLoggedWithTheirStatus) {
  Fake().smBios.loadStatus = 4;
  EXPECT_TRUE(Read().empty());
  EXPECT_EQ(Fake().log, Lines{"2 SMBIOS library could not load. Error 4"});
}

TEST_F(SlotInfoTest, FailingFirstFetchIsLoggedAndTheLibraryClosed) {
  Fake().smBios.firstStatus = 2;
  PutSlots({SlotRecord()});
  EXPECT_TRUE(Make<TSlotInfo>(kSystemSlotClass).TPci::GetCIMInstances().empty());
  EXPECT_EQ(Fake().log, Lines{"2 Return from smBiosGetFirst: Error 2"});
  EXPECT_EQ(Fake().smBios.openHandles, 0);
}

TEST_F(SlotInfoTest, StatusOfClosingAfterAFailedFirstFetchIsIgnored) {
  Fake().smBios.firstStatus = 2;
  Fake().smBios.closeStatus = 3;
  Read();
  EXPECT_EQ(Fake().log, Lines{"2 Return from smBiosGetFirst: Error 2"});
}

TEST_F(SlotInfoTest, FailingCloseIsLoggedAndTheSlotsReturned) {
  Fake().smBios.closeStatus = 3;
  PutSlots({SlotRecord()});
  EXPECT_EQ(Read().size(), 1U);
  EXPECT_EQ(Fake().log, Lines{"2 Return from smBiosClose: Error 3"});
}

TEST_F(SlotInfoTest, CollectorWithoutProviderReadsTheSlotsAndLogsNothing) {
  PutSlots({SlotRecord()});
  EXPECT_EQ(Tags(TSlotInfo(Class(kSystemSlotClass)).GetSlotInfo()), Lines{"Tag 1"});
  Fake().smBios.firstStatus = 2;
  EXPECT_TRUE(TSlotInfo(Class(kSystemSlotClass)).GetSlotInfo().empty());
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(SlotInfoTest, EndOfTheWalkSaysNothing) {
  PutSlots({SlotRecord(), SlotRecord()});
  EXPECT_EQ(Read().size(), 2U);
  EXPECT_TRUE(Fake().log.empty());
  EXPECT_EQ(Fake().smBios.openHandles, 0);
}

TEST_F(SlotInfoTest, SlotsBecomeInstancesInTableOrder) {
  PutSlots({SlotRecord(), SlotRecord(), SlotRecord()});
  EXPECT_EQ(Make<TSlotInfo>(kSystemSlotClass).TPci::GetCIMInstances().size(), 3U);
  ASSERT_EQ(Instances(kSystemSlotClass).size(), 3U);
  EXPECT_EQ(Text(*Instances(kSystemSlotClass)[2], "Tag"), "Tag 3");
}

TEST_F(SlotInfoTest, OneFailingInstanceIsLoggedAndTheOthersStayInOrder) {
  PutSlots({SlotRecord(), SlotRecord(), SlotRecord()});
  const auto faulty = std::make_shared<FaultyClass>(Class(kSystemSlotClass));
  faulty->onCreate = [](int count) {
    if (count == 2) throw TVTQException("refused");
  };
  EXPECT_EQ(TSlotInfo(faulty, &provider).TPci::GetCIMInstances().size(), 2U);
  EXPECT_EQ(Text(*Instances(kSystemSlotClass)[0], "Tag"), "Tag 1");
  EXPECT_EQ(Text(*Instances(kSystemSlotClass)[1], "Tag"), "Tag 3");
  EXPECT_EQ(Fake().LogOf(2),
            Lines{"PCI Slot info encountered an error\t\t\t\t\t\t\t\t generating CIM instances. "
                  "Error Code: refused"});
}

TEST_F(SlotInfoTest, OtherExceptionsPassThrough) {
  PutSlots({SlotRecord()});
  const auto faulty = std::make_shared<FaultyClass>(Class(kSystemSlotClass));
  faulty->onCreate = [](int) { throw std::bad_alloc(); };
  EXPECT_THROW(TSlotInfo(faulty, &provider).TPci::GetCIMInstances(), std::bad_alloc);
}

TEST_F(SlotInfoTest, RecordOfEveryLengthDesignationAndPeerCountStaysInsideTheBuffer) {
  // With AddressSanitizer, this shows that no byte outside the buffer is accessed.
  for (int length = 0; length < 256; ++length) {
    Fake().smBios.structures.clear();
    for (int number = 0; number < 256; ++number) {
      std::vector<unsigned char> bytes(1024, 'x');
      bytes[0] = 9;
      bytes[1] = static_cast<unsigned char>(length);
      bytes[4] = static_cast<unsigned char>(number);
      bytes[0x12] = static_cast<unsigned char>(number);
      Fake().smBios.structures.push_back(bytes);
    }
    EXPECT_GE(Read().size(), 256U);
  }
}
