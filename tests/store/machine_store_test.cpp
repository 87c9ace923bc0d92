// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "host/store/fleet_module.h"
#include "tests/runtime/temporary_directory.h"
#include "tests/store/made_record.h"
#include "tests/store/postgresql_server.h"
#include "tests/store/stored_rows.h"

using namespace pciinfo;

namespace {

using Lines = std::vector<std::string>;

/// Each test runs with both systems.
class MachineStoreTest : public testing::TestWithParam<const char*> {
 protected:
  MachineStoreTest()
      : target_(std::string(GetParam()) == "sqlite" ? directory_ / "inventory.db"
                                                    : PostgresqlServer::Shared().MakeDatabase()) {}

  StoreResult Store(const MachineRecord& record, bool redact = false) {
    const std::unique_ptr<MachineStore> store(PciinfoOpenMachineStore({target_, redact}));
    return store->Store(record);
  }

  Lines Ask(const std::string& query) { return AnswerOf(target_, query); }

  vtq::TemporaryDirectory directory_;
  std::string target_;
};

MachineRecord At(const std::string& time) {
  MachineRecord record = MadeRecord();
  record.collected = time;
  return record;
}

constexpr const char* kLater = "2024-05-02T12:00:00Z";
constexpr const char* kLast = "2024-05-03T12:00:00Z";

}  // namespace

INSTANTIATE_TEST_SUITE_P(Sqlite, MachineStoreTest, testing::Values("sqlite"));
INSTANTIATE_TEST_SUITE_P(Postgresql, MachineStoreTest, testing::Values("postgresql"));

TEST_P(MachineStoreTest, KeepsEverything) {
  EXPECT_EQ(Store(MadeRecord()), StoreResult::kNew);
  EXPECT_EQ(Ask("SELECT machine, product, bios_version, free_slots, problems, complete "
                "FROM machines"),
            Lines{"db1|Server|2.1|1|1|1"});
  EXPECT_EQ(Ask("SELECT machine, slot, vendor_id, device, firmware, serial_number FROM cards"),
            (Lines{"db1|PCIe Slot 1|15b3|ConnectX-6 Dx|22.31.1014|MT2042X00001",
                   "db1||144d||EPK9CB5Q|"}));
  EXPECT_EQ(Ask("SELECT address, driver, is_bridge FROM functions"),
            (Lines{"0000:00:01.0||1", "0000:01:00.0|mlx5_core|0", "0000:01:00.1|mlx5_core|0",
                   "0000:02:00.0|nvme|0"}));
  EXPECT_EQ(Ask("SELECT slot, lanes FROM free_slots"), Lines{"PCIe Slot 2|16"});
  EXPECT_EQ(Ask("SELECT interface, hardware_address, slot FROM interfaces"),
            (Lines{"eth0|0c:42:a1:00:00:01|PCIe Slot 1", "eth1|0c:42:a1:00:00:02|PCIe Slot 1"}));
  EXPECT_EQ(Ask("SELECT code, severity, object, text FROM findings"),
            Lines{"link-width|warning|0000:01:00.0|runs at x8 of x16"});
  EXPECT_EQ(
      Ask("SELECT kind, product, firmware, machines, count FROM firmware"),
      (Lines{"bios|Server|2.1|1|1", "card|ConnectX-6 Dx|22.31.1014|1|1", "card||EPK9CB5Q|1|1"}));
  EXPECT_EQ(Ask("SELECT address FROM functions WHERE link_width < max_link_width").size(), 2U);
}

TEST_P(MachineStoreTest, ChangesOneTimeOnlyWhenStoringTheSameStateAgain) {
  Store(MadeRecord());
  StoredRows before = ReadStoredRows(target_);
  EXPECT_EQ(Store(At(kLater)), StoreResult::kSame);
  StoredRows after = ReadStoredRows(target_);
  ASSERT_EQ(before["machine"].size(), 1U);
  std::string& machine = before["machine"].front();
  const std::size_t lastSeen = machine.rfind("2024-05-01");
  machine.replace(lastSeen, 10, "2024-05-02");
  EXPECT_EQ(before, after);
  EXPECT_EQ(Ask("SELECT DISTINCT CAST(last_seen AS TEXT) FROM functions").front().substr(0, 19),
            "2024-05-02 12:00:00");
}

TEST_P(MachineStoreTest, KeepsTheHistoryOfWhatChanges) {
  Store(MadeRecord());
  MachineRecord changed = At(kLater);
  changed.functions[3].driver = "vfio-pci";
  changed.slots[1].state = "occupied";
  EXPECT_EQ(Store(changed), StoreResult::kChanged);
  changed.collected = kLast;
  changed.functions.pop_back();
  EXPECT_EQ(Store(changed), StoreResult::kChanged);
  EXPECT_EQ(Ask("SELECT driver, CAST(first_seen AS TEXT), CAST(last_seen AS TEXT), "
                "CAST(gone AS TEXT) FROM function_history WHERE address = '0000:02:00.0'")
                .size(),
            2U);
  EXPECT_EQ(
      Ask("SELECT kind, object, change, property, before, after FROM changes"),
      (Lines{"function|0000:02:00.0|changed|driver|nvme|vfio-pci", "function|0000:02:00.0|gone|| |",
             "machine|db1|appeared|||", "nvme|nvme0|gone||0000:02:00.0|",
             "slot|PCIe Slot 2|changed|state|empty|occupied"}));
  EXPECT_EQ(Ask("SELECT object FROM changes WHERE at >= '2024-05-03'"),
            (Lines{"0000:02:00.0", "nvme0"}));
}

TEST_P(MachineStoreTest, GivesWhatIsGoneTheTimeThatItWasSeenLast) {
  Store(MadeRecord());
  Store(At(kLater));
  MachineRecord less = At(kLast);
  less.functions.pop_back();
  Store(less);
  const Lines times =
      Ask("SELECT CAST(first_seen AS TEXT), CAST(last_seen AS TEXT), CAST(gone AS TEXT) "
          "FROM function_fact WHERE gone IS NOT NULL");
  ASSERT_EQ(times.size(), 1U);
  EXPECT_NE(times.front().find("2024-05-01 12:00:00"), std::string::npos);
  EXPECT_NE(times.front().find("|2024-05-02 12:00:00"), std::string::npos);
  EXPECT_NE(times.front().find("|2024-05-03 12:00:00"), std::string::npos);
}

TEST_P(MachineStoreTest, MakesNoHistoryOfWhatFollowsTheLoad) {
  Store(MadeRecord());
  MachineRecord idle = At(kLater);
  idle.functions[1].linkSpeed = "2.5 GT/s";
  idle.findings[0].text = "ran at x8 of x16 for a while";
  EXPECT_EQ(Store(idle), StoreResult::kSame);
  EXPECT_EQ(Ask("SELECT link_speed FROM function_history WHERE address = '0000:01:00.0'"),
            Lines{"2.5 GT/s"});
  EXPECT_EQ(Ask("SELECT text FROM finding_history"), Lines{"ran at x8 of x16 for a while"});
}

TEST_P(MachineStoreTest, LeavesALaterStateAsItIs) {
  Store(At(kLater));
  const StoredRows before = ReadStoredRows(target_);
  MachineRecord older = MadeRecord();
  older.functions.clear();
  EXPECT_EQ(Store(older), StoreResult::kOlder);
  EXPECT_EQ(ReadStoredRows(target_), before);
}

TEST_P(MachineStoreTest, ReplacesAStateOfTheSameMoment) {
  Store(MadeRecord());
  MachineRecord better = MadeRecord();
  better.functions[3].driver = "better";
  EXPECT_EQ(Store(better), StoreResult::kChanged);
  EXPECT_EQ(Ask("SELECT driver FROM function_history WHERE address = '0000:02:00.0'"),
            Lines{"better"});
}

TEST_P(MachineStoreTest, KeepsWhatAnIncompleteCollectionDoesNotTell) {
  Store(MadeRecord());
  MachineRecord user = At(kLater);
  user.troubles = {"the SMBIOS tables cannot be read"};
  user.systemUuid.clear();
  user.slots.clear();
  user.functions[1].serialNumber.clear();
  user.functions[1].numaNode.reset();
  user.functions[1].driver = "vfio-pci";
  EXPECT_EQ(Store(user), StoreResult::kChanged);
  EXPECT_EQ(Ask("SELECT driver, serial_number, numa_node FROM functions "
                "WHERE address = '0000:01:00.0'"),
            Lines{"vfio-pci|MT2042X00001|0"});
  EXPECT_EQ(Ask("SELECT slot FROM slots").size(), 2U);
  EXPECT_EQ(Ask("SELECT system_uuid, complete, troubles FROM machine"),
            Lines{"4c4c4544-0042-3510-8054-b4c04f4d3132|0|the SMBIOS tables cannot be read"});
}

TEST_P(MachineStoreTest, TakesNoSlotsForACollectionWithoutRights) {
  Store(MadeRecord());
  MachineRecord user = At(kLater);
  user.slots.clear();
  user.functions[1].place = "unknown";
  user.functions[1].slot.clear();
  EXPECT_EQ(Store(user), StoreResult::kSame);
  EXPECT_EQ(Ask("SELECT complete, free_slots FROM machines"), Lines{"0|1"});
  EXPECT_EQ(Ask("SELECT place, slot FROM functions WHERE address = '0000:01:00.0'"),
            Lines{"slot|PCIe Slot 1"});
}

TEST_P(MachineStoreTest, TellsMachinesApart) {
  Store(MadeRecord());
  MachineRecord renamed = At(kLater);
  renamed.name = "db1-new";
  EXPECT_EQ(Store(renamed), StoreResult::kSame);
  MachineRecord other = MadeRecord();
  other.name = "db2";
  other.systemUuid = "4c4c4544-0042-3510-8054-b4c04f4d3199";
  EXPECT_EQ(Store(other), StoreResult::kNew);
  EXPECT_EQ(Ask("SELECT name FROM machine"), (Lines{"db1-new", "db2"}));
}

TEST_P(MachineStoreTest, WritesNoIdentifierThatIsRedacted) {
  MachineRecord named = MadeRecord();
  named.functions[1].systemDevices[0].name = "enx0c42a1000001";
  EXPECT_EQ(Store(named, true), StoreResult::kNew);
  named.collected = kLater;
  EXPECT_EQ(Store(named, true), StoreResult::kSame);
  const MachineRecord record = MadeRecord();
  std::string all;
  for (const auto& [table, lines] : ReadStoredRows(target_)) {
    for (const std::string& line : lines) all.append(line).append("\n");
  }
  for (const char* secret :
       {"4c4c4544", "0123456789abcdef", "MT2042X00001", "S4YNNE0N", "0c:42", "0c42"}) {
    EXPECT_EQ(all.find(secret), std::string::npos) << secret << " in\n" << all;
  }
  EXPECT_NE(all.find("sha256:"), std::string::npos);
  // The machine is known in clear as well.
  EXPECT_NE(Store(At(kLast)), StoreResult::kNew);
  EXPECT_EQ(Ask("SELECT system_uuid FROM machine"), Lines{record.systemUuid});
}

TEST_P(MachineStoreTest, RefusesWhatItCannotKeepAndGoesOn) {
  const std::unique_ptr<MachineStore> store(PciinfoOpenMachineStore({target_, false}));
  MachineRecord bad = MadeRecord();
  bad.functions[2].address = bad.functions[1].address;
  EXPECT_THROW(store->Store(bad), BadRecord);
  bad = MadeRecord();
  bad.slots[1].name = std::string(5000, 'x');
  EXPECT_THROW(store->Store(bad), BadRecord);
  bad = MadeRecord();
  bad.slots[1].lanes = 4000000000U;
  EXPECT_THROW(store->Store(bad), BadRecord);
  EXPECT_THROW(store->Store(At("3024-05-01T12:00:00Z")), BadRecord);
  EXPECT_THROW(store->Store(At("yesterday")), BadRecord);
  EXPECT_EQ(Ask("SELECT name FROM machine"), Lines{});
  EXPECT_EQ(store->Store(MadeRecord()), StoreResult::kNew);
}

TEST_P(MachineStoreTest, TakesAwkwardTexts) {
  MachineRecord record = MadeRecord();
  record.functions[1].device = "it's \"5\" :p1 100% \\ \u00e4\u6f22";
  record.functions[1].driver = std::string("a\0b", 3);
  record.slots[1].name = record.slots[0].name;
  record.findings.push_back(record.findings[0]);
  Store(record);
  record.collected = kLater;
  EXPECT_EQ(Store(record), StoreResult::kSame);
  EXPECT_EQ(Ask("SELECT device, driver FROM functions WHERE address = '0000:01:00.0'"),
            Lines{record.functions[1].device + "|a"});
}

TEST_P(MachineStoreTest, KeepsEachModelOnceAndGivesItTheNamesThatItLacks) {
  MachineRecord record = MadeRecord();
  Store(record);
  record.collected = kLater;
  record.functions[3].device = "NVMe SSD";
  record.functions[1].device = "another name";
  EXPECT_EQ(Store(record), StoreResult::kSame);
  EXPECT_EQ(Ask("SELECT vendor_id, device FROM card_model"),
            (Lines{"144d|NVMe SSD", "15b3|ConnectX-6 Dx", "8086|"}));
}
