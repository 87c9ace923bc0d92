// SPDX-License-Identifier: Apache-2.0

// What `pciinfo fleet` refuses: statements that write, and databases that cannot be asked.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/fleet/fleet_under_test.h"
#include "tests/runtime/temporary_directory.h"
#include "tests/store/postgresql_server.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class FleetRefusals : public testing::TestWithParam<DatabaseKind> {
 protected:
  /// Runs a query that must be refused, and checks that it did nothing.
  static void ExpectRefused(const std::string& query) {
    const RunResult result = RunFleet({ExampleFleet(GetParam()), "sql", query});
    EXPECT_EQ(result.status, 1) << query;
    EXPECT_EQ(result.out, "") << query;
    EXPECT_THAT(result.err, HasSubstr("pciinfo: ")) << query;
    EXPECT_EQ(CountMachines(GetParam(), ExampleFleet(GetParam())), "6") << query;
  }
};

TEST_P(FleetRefusals, StatementsThatWrite) {
  for (const char* query :
       {"DELETE FROM machine", "DROP TABLE machine", "UPDATE machine SET name = ''",
        "INSERT INTO setting VALUES ('a', 'b')", "CREATE TABLE other (a INTEGER)",
        "CREATE TEMPORARY TABLE other (a INTEGER)", "DELETE FROM machine RETURNING id",
        "SELECT 1; DROP TABLE machine", "COMMIT; DROP TABLE machine", "ROLLBACK", "COMMIT", "BEGIN",
        "END", "SAVEPOINT a", "ANALYZE", "REINDEX", "VACUUM", "SELECT 1; SELECT 2",
        "WITH a AS (SELECT 1) DELETE FROM machine"}) {
    ExpectRefused(query);
  }
}

TEST_P(FleetRefusals, TextsThatAreNoQuery) {
  for (const char* query : {"SELEC 1", "-- nothing", " ", ";", "SELECT 'a", "/*"}) {
    ExpectRefused(query);
  }
}

TEST_P(FleetRefusals, OlderAndNewerSchemas) {
  const std::string database = EmptyDatabase(GetParam());
  Execute(GetParam(), database, "CREATE TABLE schema_version (version INTEGER)");
  Execute(GetParam(), database, "INSERT INTO schema_version VALUES (1)");
  RunResult result = RunFleet({database, "machines"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, AllOf(HasSubstr("it has version 1 of the schema"),
                                HasSubstr("the next \"pciinfo store\" into it migrates it")));
  Execute(GetParam(), database, "INSERT INTO schema_version VALUES (1000)");
  result = RunFleet({database, "machines"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err,
              HasSubstr("a newer version of this program has written it (schema 1000;"));
}

TEST_P(FleetRefusals, DatabasesOfOtherPrograms) {
  const std::string database = EmptyDatabase(GetParam());
  Execute(GetParam(), database, "CREATE TABLE machine (id INTEGER)");
  const RunResult result = RunFleet({database, "machines"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("this is no database that \"pciinfo store\" has written"));
}

INSTANTIATE_TEST_SUITE_P(Sqlite, FleetRefusals, testing::Values(DatabaseKind::kSqlite));
INSTANTIATE_TEST_SUITE_P(Postgresql, FleetRefusals, testing::Values(DatabaseKind::kPostgresql));

TEST(FleetOfSqlite, IsAskedWithoutOtherFiles) {
  const vtq::TemporaryDirectory directory;
  const std::string other = directory / "other.db";
  for (const std::string& query :
       {"ATTACH '" + other + "' AS other", "VACUUM INTO '" + other + "'",
        "SELECT load_extension('" + other + "')", std::string("PRAGMA journal_mode = WAL"),
        std::string("PRAGMA query_only = 0")}) {
    const RunResult result = RunFleet({ExampleFleet(DatabaseKind::kSqlite), "sql", query});
    EXPECT_EQ(result.status, 1) << query;
    EXPECT_THAT(result.err, HasSubstr("the database refuses the statement")) << query;
  }
  EXPECT_THAT(directory.Names(), testing::IsEmpty());
}

TEST(FleetOfSqlite, IsNotMade) {
  const vtq::TemporaryDirectory directory;
  const RunResult result = RunFleet({directory / "inventory.db", "machines"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("there is no such file: \"pciinfo store\" makes the database"));
  EXPECT_THAT(directory.Names(), testing::IsEmpty());
}

TEST(FleetOfSqlite, IsADatabaseThatCanBeRead) {
  const vtq::TemporaryDirectory directory;
  EXPECT_THAT(RunFleet({directory.Write("text", std::string(5000, 'x')), "machines"}).err,
              HasSubstr("the file is not an SQLite database"));
  EXPECT_THAT(RunFleet({directory.GetPath(), "machines"}).err, HasSubstr("this is not a file"));
  EXPECT_THAT(RunFleet({directory.Write("empty", ""), "machines"}).err,
              HasSubstr("this is no database that \"pciinfo store\" has written"));
  EXPECT_EQ(RunFleet({"", "machines"}).status, 2);
  EXPECT_THAT(RunFleet({"other://server/db", "machines"}).err, HasSubstr("are not supported"));
}

TEST(FleetOfSqlite, SaysThatItIsDamaged) {
  const std::string database = EmptyDatabase(DatabaseKind::kSqlite);
  std::filesystem::copy_file(ExampleFleet(DatabaseKind::kSqlite), database);
  std::fstream file(database, std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(4096);  // all pages but the first, which has the schema
  file << std::string(std::filesystem::file_size(database) - 4096, '\xff') << std::flush;
  const RunResult result = RunFleet({database, "cards"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("the database is damaged: restore it from a backup"));
}

TEST(FleetOfSqlite, SaysThatItIsEmpty) {
  const std::string database = EmptyDatabase(DatabaseKind::kSqlite);
  std::filesystem::copy_file(ExampleFleet(DatabaseKind::kSqlite), database);
  Execute(DatabaseKind::kSqlite, database, "DELETE FROM machine");
  const RunResult result = RunFleet({database, "machines"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err,
            "pciinfo: the database has no machines yet: \"pciinfo store\" writes them into it\n");
}

TEST(FleetCommandLine, IsChecked) {
  EXPECT_EQ(RunFleet({"x.db"}).status, 2);
  EXPECT_THAT(RunFleet({"x.db", "card"}).err, HasSubstr("QUESTION: card not in {machines,cards,"));
  EXPECT_THAT(RunFleet({"x.db", "cards", "--free"}).err, HasSubstr("belongs to \"fleet slots\""));
  EXPECT_THAT(RunFleet({"x.db", "cards", "--filter", "colour=red"}).err,
              HasSubstr("invalid filter \"colour=red\""));
  EXPECT_THAT(RunFleet({"x.db", "changes", "--since", "later"}).err,
              HasSubstr("\"later\" is no time"));
  EXPECT_EQ(RunFleet({"x.db", "cards", "--format", "mof"}).status, 2);
  EXPECT_THAT(RunFleet({"--help"}).out, HasSubstr("Questions:\n  machines "));
  const RunResult early =
      RunProcess({PCIINFO_PROGRAM, "--filter", "vendor=10de", "fleet", "x.db", "cards"});
  EXPECT_EQ(early.status, 2);
  EXPECT_THAT(early.err, HasSubstr("--filter cannot be used with this command"));
}

TEST(FleetAnswer, ThatCannotBeWrittenIsAFailure) {
  const RunResult result = RunProcess(
      {"sh", "-c", std::string(PCIINFO_PROGRAM) + " fleet \"$DATABASE\" cards >/dev/full"},
      {{"DATABASE", ExampleFleet(DatabaseKind::kSqlite)}});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("cannot write the output: No space left on device"));
}

/// What a server refuses.
class PostgresqlFleet : public testing::Test {
 protected:
  static RunResult Ask(const std::string& query) {
    return RunFleet({ExampleFleet(DatabaseKind::kPostgresql), "sql", query});
  }
};

TEST_F(PostgresqlFleet, RunsNoProgramAndWritesNoFile) {
  const vtq::TemporaryDirectory directory;
  std::filesystem::permissions(directory.GetPath(), std::filesystem::perms::all);
  const std::string file = directory / "file";
  const std::string copy = "COPY (SELECT 1) TO ";
  for (const std::string& query :
       {copy + "PROGRAM 'touch " + file + "'", copy + "'" + file + "'",
        "DO $$ BEGIN EXECUTE 'COPY (SELECT 1) TO ''" + file + "'''; END $$",
        "SELECT lo_export(1, '" + file + "')", "SELECT pg_read_file('PG_VERSION')" + std::string(),
        std::string("SELECT * INTO other FROM machine"),
        std::string("WITH a AS (DELETE FROM machine RETURNING id) SELECT * FROM a"),
        std::string("SELECT nextval('machine_id_seq')"),
        std::string("SET SESSION CHARACTERISTICS AS TRANSACTION READ WRITE"),
        std::string("SELECT set_config('transaction_read_only', 'off', true), "
                    "query_to_xml('DELETE FROM machine RETURNING id', true, true, '')")}) {
    EXPECT_EQ(Ask(query).status, 1) << query;
  }
  EXPECT_THAT(directory.Names(), testing::IsEmpty());
  EXPECT_EQ(CountMachines(DatabaseKind::kPostgresql, ExampleFleet(DatabaseKind::kPostgresql)), "6");
}

TEST_F(PostgresqlFleet, HasItsTypes) {
  const RunResult result =
      RunFleet({ExampleFleet(DatabaseKind::kPostgresql), "sql",
                "SELECT true AS flag, 1.50::numeric AS number, 9007199254740993::bigint AS large, "
                "'NaN'::float8 AS no_number, '{1,2}'::int[] AS list, "
                "'2024-05-06 01:02:03+02'::timestamptz AS at, NULL AS nothing",
                "--format", "jsonl"});
  EXPECT_EQ(result.out,
            "{\"flag\":true,\"number\":1.5,\"large\":9007199254740993,\"no_number\":null,"
            "\"list\":\"{1,2}\",\"at\":\"2024-05-05 23:02:03\",\"nothing\":null}\n");
}

TEST_F(PostgresqlFleet, IsAskedByARoleThatMayOnlyRead) {
  const std::string& fleet = ExampleFleet(DatabaseKind::kPostgresql);
  const std::string asReader = "postgresql://dashboards@" + fleet.substr(fleet.find('@') + 1);
  Execute(DatabaseKind::kPostgresql, fleet, "CREATE ROLE dashboards LOGIN");
  EXPECT_THAT(RunFleet({asReader, "machines"}).err, HasSubstr("permission denied"));
  Execute(DatabaseKind::kPostgresql, fleet,
          "GRANT SELECT ON ALL TABLES IN SCHEMA public TO dashboards");
  for (const char* question : {"machines", "cards", "slots", "firmware", "changes", "findings"}) {
    EXPECT_EQ(RunFleet({asReader, question}).out, RunFleet({fleet, question}).out) << question;
  }
  EXPECT_EQ(RunFleet({asReader, "find", "rtx"}).out, RunFleet({fleet, "find", "rtx"}).out);
}

TEST_F(PostgresqlFleet, SaysWhyItCannotConnect) {
  const PostgresqlServer& server = PostgresqlServer::Shared();
  EXPECT_THAT(RunFleet({server.AddressOf("nosuch"), "machines"}).err,
              HasSubstr("database \"nosuch\" does not exist"));
  server.Run("CREATE ROLE secret LOGIN PASSWORD 'right'");
  const RunResult wrong = RunFleet({server.AddressOf("postgres", "secret:wrong1"), "machines"});
  EXPECT_EQ(wrong.status, 1);
  EXPECT_THAT(wrong.err, AllOf(HasSubstr("password authentication failed for user \"secret\""),
                               Not(HasSubstr("wrong1"))));
  const RunResult noServer =
      RunFleet({"postgresql://somebody:secret@/fleet?host=/nosuch", "machines"});
  EXPECT_EQ(noServer.status, 1);
  EXPECT_THAT(noServer.err,
              AllOf(HasSubstr("postgresql://somebody@/fleet: "),
                    HasSubstr("No such file or directory"), Not(HasSubstr("secret"))));
}

}  // namespace
