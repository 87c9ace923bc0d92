// SPDX-License-Identifier: Apache-2.0
#include "host/store/schema.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/store/fleet_module.h"
#include "tests/runtime/temporary_directory.h"
#include "tests/store/made_record.h"
#include "tests/store/postgresql_server.h"
#include "tests/store/stored_rows.h"

using namespace pciinfo;

namespace {

using testing::ElementsAre;

class SchemaTest : public testing::TestWithParam<const char*> {
 protected:
  SchemaTest()
      : target_(std::string(GetParam()) == "sqlite" ? directory_ / "inventory.db"
                                                    : PostgresqlServer::Shared().MakeDatabase()) {}

  vtq::TemporaryDirectory directory_;
  std::string target_;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Sqlite, SchemaTest, testing::Values("sqlite"));
INSTANTIATE_TEST_SUITE_P(Postgresql, SchemaTest, testing::Values("postgresql"));

TEST(SchemaTexts, AreSplitIntoStatements) {
  EXPECT_THAT(
      StatementsOf("-- first\nCREATE TABLE a (\n  b TEXT, -- of c;\n  d TEXT\n);\n\nDROP x;\n"),
      ElementsAre("CREATE TABLE a (\n  b TEXT,\n  d TEXT\n)", "DROP x"));
}

TEST_P(SchemaTest, EachVersionMakesTheNextWithoutLosingARow) {
  {
    Database database(target_);
    EXPECT_EQ(VersionOf(database), 0);
    for (int version = 1; version < NewestVersion(); ++version) {
      Migrate(database, version);
      EXPECT_EQ(VersionOf(database), version);
    }
    database.Execute(
        "INSERT INTO machine (name, first_seen, last_seen, complete) "
        "VALUES ('old', '2024-01-01 00:00:00', '2024-01-01 00:00:00', 1)");
  }
  const std::unique_ptr<MachineStore> store(PciinfoOpenMachineStore({target_, false}));
  EXPECT_EQ(store->Store(MadeRecord()), StoreResult::kNew);
  Database database(target_);
  EXPECT_EQ(VersionOf(database), NewestVersion());
  EXPECT_THAT(AnswerOf(target_, "SELECT machine FROM machines"), ElementsAre("db1", "old"));
  EXPECT_EQ(AnswerOf(target_, "SELECT version FROM schema_version").size(),
            static_cast<std::size_t>(NewestVersion()));
}

TEST_P(SchemaTest, TheSecondVersionsHistoryHasTheSameChanges) {
  Database database(target_);
  Migrate(database, 2);
  database.Execute(
      "INSERT INTO machine (name, first_seen, last_seen, complete) "
      "VALUES ('old', '2024-01-01 00:00:00', '2024-01-02 00:00:00', 1)");
  for (const char* row : {"'slow-link', '00:01.0', 1, '2024-01-01 00:00:00'",
                          "'no-driver', '00:02.0', 1, '2024-01-02 00:00:00'"}) {
    database.Execute(
        fmt::format("INSERT INTO finding_fact (machine, code, object, ordinal, "
                    "first_seen, severity, text) SELECT id, {}, 'note', '' FROM machine",
                    row));
  }
  const char* const query = "SELECT property FROM changes WHERE kind = 'finding'";
  Migrate(database);
  EXPECT_THAT(AnswerOf(target_, query), ElementsAre("no-driver"));
}

TEST_P(SchemaTest, AFailedMigrationChangesNothing) {
  Database database(target_);
  Migrate(database, 1);
  database.Execute("CREATE TABLE findings (in_the_way TEXT)");
  EXPECT_THROW(Migrate(database), std::runtime_error);
  EXPECT_EQ(VersionOf(database), 1);
  database.Execute("DROP TABLE findings");
  Migrate(database);
  EXPECT_EQ(VersionOf(database), NewestVersion());
}

TEST_P(SchemaTest, ADatabaseOfANewerVersionIsRefused) {
  {
    Database database(target_);
    Migrate(database);
    database.Execute("INSERT INTO schema_version VALUES (99, CURRENT_TIMESTAMP)");
  }
  try {
    PciinfoOpenMachineStore({target_, false});
    ADD_FAILURE() << "opened";
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("update this program"));
  }
}
