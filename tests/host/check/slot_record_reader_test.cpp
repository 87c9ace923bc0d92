// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/check/class_facts_reader.h"
#include "tests/runtime/smbios_bytes.h"
#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

using NQZMVTQ20::TVTQStatusCode;
using vtq::SmBiosBytes;

/// A slot structure of `length` bytes at the address 0001:03:02.5, in use, with three peer groups.
SmBiosBytes SlotStructure(std::size_t length) {
  SmBiosBytes bytes(64);
  bytes[0x07] = 4;
  vtq::PutU16(bytes, 0x0D, 1);
  bytes[0x0F] = 3;
  bytes[0x10] = 0x15;
  bytes[0x12] = 3;
  for (std::size_t k = 0; k < 3; ++k) {
    vtq::PutU16(bytes, 0x13 + 5 * k, 0x100 + k);
    bytes[0x15 + 5 * k] = static_cast<std::uint8_t>(0x20 + k);
  }
  const auto at = [&](std::size_t place) {
    return bytes.begin() + static_cast<std::ptrdiff_t>(place);
  };
  return vtq::MakeStructure(9, SmBiosBytes(at(4), at(length)), {"SLOT"});
}

class CheckSlotReader : public testing::Test {
 protected:
  SlotRecords Read() const { return ReadSlotRecords(root_.GetPath()); }

  void WriteTables(int major, int minor, const std::vector<SmBiosBytes>& structures) const {
    SmBiosBytes table;
    for (const SmBiosBytes& structure : structures) {
      table.insert(table.end(), structure.begin(), structure.end());
    }
    Write("smbios_entry_point",
          vtq::MakeVersion2Entry(major, minor, table.size(), structures.size()));
    Write("DMI", table);
  }

  void Write(const std::string& name, const SmBiosBytes& bytes) const {
    const std::string directory = root_.GetPath() + "/sys/firmware/dmi/tables";
    fs::create_directories(directory);
    std::ofstream(directory + "/" + name, std::ios::binary)
        << std::string(bytes.begin(), bytes.end());
  }

  vtq::TemporaryDirectory root_;
};

TEST_F(CheckSlotReader, MissingTablesAreNotFound) {
  EXPECT_EQ(Read().opened, TVTQStatusCode::kNotFound);
  EXPECT_FALSE(Read().haveAddresses);
}

TEST_F(CheckSlotReader, DamagedTablesAreCorrupt) {
  Write("smbios_entry_point", SmBiosBytes(31));
  Write("DMI", {});
  EXPECT_EQ(Read().opened, TVTQStatusCode::kCorruptData);
}

TEST_F(CheckSlotReader, ReadsARecord) {
  WriteTables(2, 8, {SlotStructure(34)});
  const SlotRecords slots = Read();
  EXPECT_EQ(slots.opened, TVTQStatusCode::kSuccess);
  EXPECT_TRUE(slots.haveAddresses);
  ASSERT_EQ(slots.records.size(), 1U);
  const SlotRecord& record = slots.records.front();
  EXPECT_EQ(record.length, 34U);
  EXPECT_EQ(record.usage, 4U);
  EXPECT_EQ(record.segment, 1U);
  EXPECT_EQ(record.address, (PciAddress{3, 2, 5}));
  EXPECT_EQ(record.peerCount, 3U);
  ASSERT_EQ(record.peers.size(), 3U);
  EXPECT_EQ(record.peers[2].segment, 0x102U);
  EXPECT_EQ(record.peers[2].bus, 0x22U);
}

TEST_F(CheckSlotReader, AddressesNeedTheVersionAndTheFirstRecord) {
  WriteTables(2, 5, {SlotStructure(34)});
  EXPECT_FALSE(Read().haveAddresses);
  WriteTables(2, 6, {SlotStructure(13), SlotStructure(34)});
  EXPECT_FALSE(Read().haveAddresses);
  WriteTables(2, 6, {SlotStructure(34), SlotStructure(13)});
  EXPECT_TRUE(Read().haveAddresses);
  EXPECT_EQ(Read().records.size(), 2U);
  WriteTables(3, 0, {});
  EXPECT_FALSE(Read().haveAddresses);
}

}  // namespace
}  // namespace pciinfo
