// SPDX-License-Identifier: Apache-2.0
#include "slots/type9.h"

#include <gtest/gtest.h>

#include <random>

#include "plugin/structure_reader.h"
#include "tests/fakes/framework.h"
#include "tests/fakes/slot_record.h"

namespace {

// The result of FindSlotString, computed byte by byte from a model of the memory: zeros, the
// record, zeros.
std::string ModelString(int index, const std::vector<unsigned char>& record) {
  if (index == 0) return "";
  const auto byteAt = [&](int place) {
    return place < 0 || place >= static_cast<int>(record.size())
               ? 0
               : record[static_cast<std::size_t>(place)];
  };
  int place = byteAt(1) < 128 ? byteAt(1) : byteAt(1) - 256;
  if (byteAt(place) == 0) return "(null string)";
  for (int count = 1; count != index; ++count) {
    while (byteAt(place) != 0) ++place;
    ++place;
  }
  std::string text;
  for (; byteAt(place) != 0; ++place) text += static_cast<char>(byteAt(place));
  return text;
}

// The record, fetched into the buffer of a StructureReader as the collectors do.
class FetchedRecord {
 public:
  explicit FetchedRecord(std::vector<unsigned char> bytes) : reader_(Handle(std::move(bytes))) {
    EXPECT_EQ(reader_.First(9), 0);
  }
  ~FetchedRecord() { NQZMVTQ20::smBiosClose(&handle_); }
  FetchedRecord(const FetchedRecord&) = delete;
  FetchedRecord& operator=(const FetchedRecord&) = delete;

  std::string String(int index) { return FindSlotString(index, reader_.Get()); }

 private:
  void* Handle(std::vector<unsigned char> bytes) {
    Fake() = {};
    Fake().smBios.structures.push_back(std::move(bytes));
    NQZMVTQ20::smBiosLoad(nullptr, &handle_);
    return handle_;
  }

  void* handle_ = nullptr;
  StructureReader reader_;
};

}  // namespace

TEST(FindSlotString, IndexZeroIsTheEmptyText) {
  EXPECT_EQ(FetchedRecord(SlotRecord().Bytes()).String(0), "");
}

TEST(FindSlotString, FindsEachStringOfTheSet) {
  SlotRecord record;
  record.strings = {"one", "two", "three"};
  FetchedRecord fetched(record.Bytes());
  EXPECT_EQ(fetched.String(1), "one");
  EXPECT_EQ(fetched.String(2), "two");
  EXPECT_EQ(fetched.String(3), "three");
}

TEST(FindSlotString, EmptySetIsTheNullStringWhateverTheIndex) {
  SlotRecord record;
  record.strings = {};
  FetchedRecord fetched(record.Bytes());
  EXPECT_EQ(fetched.String(1), "(null string)");
  EXPECT_EQ(fetched.String(2), "(null string)");
  EXPECT_EQ(fetched.String(255), "(null string)");
}

TEST(FindSlotString, IndexBehindTheLastStringWalksIntoWhatFollows) {
  SlotRecord record;
  record.strings = {"one"};
  std::vector<unsigned char> bytes = record.Bytes();
  for (const char c : std::string("beyond")) bytes.push_back(static_cast<unsigned char>(c));
  FetchedRecord fetched(bytes);
  EXPECT_EQ(fetched.String(2), "");
  EXPECT_EQ(fetched.String(3), "beyond");
  EXPECT_EQ(fetched.String(255), "");
}

TEST(FindSlotString, LengthOf128AndMorePointsBackwards) {
  std::vector<unsigned char> bytes = SlotRecord().Bytes();
  bytes[1] = 0x80;
  EXPECT_EQ(FetchedRecord(bytes).String(1), "(null string)");
}

TEST(FindSlotString, AgreesWithAByteModelForEveryIndexAndLength) {
  std::mt19937 random(9);
  for (int length = 0; length < 256; ++length) {
    std::vector<unsigned char> bytes(1024);
    for (unsigned char& byte : bytes) {
      byte = random() % 4 == 0 ? 0 : static_cast<unsigned char>('A' + random() % 26);
    }
    bytes[0] = 9;
    bytes[1] = static_cast<unsigned char>(length);
    FetchedRecord fetched(bytes);
    for (int index = 0; index < 256; ++index) {
      ASSERT_EQ(fetched.String(index), ModelString(index, bytes))
          << "length " << length << " index " << index;
    }
  }
}

TEST(FindSlotString, StaysInsideTheBufferWhenTheWholeBufferIsText) {
  for (int length = 0; length < 256; ++length) {
    std::vector<unsigned char> bytes(1024, 'x');
    bytes[0] = 9;
    bytes[1] = static_cast<unsigned char>(length);
    FetchedRecord fetched(bytes);
    for (int index = 0; index < 256; ++index) {
      ASSERT_EQ(fetched.String(index), ModelString(index, bytes))
          << "length " << length << " index " << index;
    }
  }
}

TEST(DataBusWidthInBits, CodesTwoToSevenHaveAWidth) {
  EXPECT_EQ(DataBusWidthInBits(2), 1);
  EXPECT_EQ(DataBusWidthInBits(3), 8);
  EXPECT_EQ(DataBusWidthInBits(4), 16);
  EXPECT_EQ(DataBusWidthInBits(5), 32);
  EXPECT_EQ(DataBusWidthInBits(6), 64);
  EXPECT_EQ(DataBusWidthInBits(7), 128);
}

TEST(DataBusWidthInBits, AllOtherCodesHaveNone) {
  EXPECT_EQ(DataBusWidthInBits(0), 0);
  EXPECT_EQ(DataBusWidthInBits(1), 0);
  for (int code = 8; code < 256; ++code) {
    EXPECT_EQ(DataBusWidthInBits(static_cast<unsigned char>(code)), 0) << code;
  }
}

TEST(StatusOfUsage, TellsTheStatusOfEachUsage) {
  const auto status = [](std::uint8_t usage) {
    const SlotStatus found = StatusOfUsage(usage);
    return std::to_string(found.operationalStatus) + " " + found.description;
  };
  EXPECT_EQ(status(1), "1 Other");
  EXPECT_EQ(status(2), "0 Unknown");
  EXPECT_EQ(status(3), "2 Slot is available");
  EXPECT_EQ(status(4), "2 Slot is in use");
  for (const int usage : {0, 5, 6, 255}) {
    EXPECT_EQ(status(static_cast<std::uint8_t>(usage)), "0 Unknown");
  }
}

TEST(VoltagesOf, FiveVoltComesBeforeThreePointThree) {
  using Voltages = std::vector<std::uint16_t>;
  EXPECT_EQ(VoltagesOf(0x06), (Voltages{3, 2}));
  EXPECT_EQ(VoltagesOf(0x02), Voltages{3});
  EXPECT_EQ(VoltagesOf(0x04), Voltages{2});
  EXPECT_EQ(VoltagesOf(0xF9), Voltages{0});
}

TEST(CountOfSlot, CountsTheSlotAndItsPeerGroups) {
  const auto count = [](std::uint8_t length, std::uint8_t peers) {
    DMIType9 slot{};
    slot.length = length;
    slot.peerGroupingCount = peers;
    return CountOfSlot(slot);
  };
  EXPECT_EQ(count(0x13, 0), 1);
  EXPECT_EQ(count(0x13, 2), 3);
  EXPECT_EQ(count(0x13, 8), 9);
  EXPECT_EQ(count(0x13, 9), 1);
  EXPECT_EQ(count(0x13, 0x80), 1);
  EXPECT_EQ(count(0x13, 0xFF), 1);
  EXPECT_EQ(count(0x11, 3), 4);
  EXPECT_EQ(count(0x10, 3), 1);
  EXPECT_EQ(count(0x80, 3), 1);
}

TEST(AllInfo, DesignationThatIsTheTagStandsAlone) {
  EXPECT_EQ(AllInfo("PCIe Slot 1", "Tag 3"), "PCIe Slot 1,Tag 3");
  EXPECT_EQ(AllInfo("Tag 5", "Tag 5"), "Tag 5");
  EXPECT_EQ(AllInfo("Tag 5 ", "Tag 5"), "Tag 5 ,Tag 5");
}
