// SPDX-License-Identifier: Apache-2.0
//
// What a database holds after `pciinfo store`, or the server, was killed in the middle.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <random>

#include "tests/fakes/run_process.h"
#include "tests/runtime/temporary_directory.h"
#include "tests/store/machine_line.h"
#include "tests/store/postgresql_server.h"
#include "tests/store/stored_rows.h"

namespace {

using Words = std::vector<std::string>;

constexpr int kKilled = 128 + SIGKILL;

/// A database in which two machines are stored, and lines that change them and add a third.
class KilledStoreTest : public testing::TestWithParam<const char*> {
 protected:
  KilledStoreTest() {
    std::string first;
    std::string second;
    for (const char* name : {"a", "b", "c"}) {
      if (*name != 'c') first += MadeLine(name, "2024-05-01T12:00:00Z", "nvme", 8);
      second += MadeLine(name, "2024-05-02T12:00:00Z", "vfio-pci", 6);
    }
    directory_.Write("first.jsonl", first);
    directory_.Write("second.jsonl", second);
    const std::string clean = MakeTarget();
    before_ = ReadStoredRows(clean);
    EXPECT_EQ(RunProcess(StoreWords(clean)).status, 0);
    after_ = ReadStoredRows(clean);
    EXPECT_NE(before_, after_);
  }

  bool IsSqlite() const { return std::string(GetParam()) == "sqlite"; }

  /// Returns a database with the first state of the machines.
  std::string MakeTarget() {
    if (!IsSqlite()) return Filled(PostgresqlServer::Shared().MakeDatabase());
    const std::string first = directory_ / "first.db";
    if (!std::filesystem::exists(first)) Filled(first);
    std::filesystem::remove(directory_ / "inventory.db-journal");
    std::filesystem::copy_file(first, directory_ / "inventory.db",
                               std::filesystem::copy_options::overwrite_existing);
    return directory_ / "inventory.db";
  }

  std::string Filled(std::string target) const {
    const RunResult result =
        RunProcess({PCIINFO_PROGRAM, "store", target, directory_ / "first.jsonl"});
    EXPECT_EQ(result.status, 0) << result.err;
    return target;
  }

  Words StoreWords(const std::string& target) const {
    return {PCIINFO_PROGRAM, "store", target, directory_ / "second.jsonl"};
  }

  /// Returns the lines of one machine in all tables.
  static Words LinesOfMachine(const StoredRows& rows, const std::string& name) {
    Words lines;
    for (const auto& [table, all] : rows) {
      for (const std::string& line : all) {
        if (table != "card_model" && line.starts_with(name + "|")) lines.push_back(table + line);
      }
    }
    return lines;
  }

  /// Each machine is in its old or its new state, and storing again makes all new.
  void CheckWholeMachines(const std::string& target) {
    const StoredRows rows = ReadStoredRows(target);
    for (const char* name : {"a", "b", "c"}) {
      const Words lines = LinesOfMachine(rows, name);
      EXPECT_TRUE(lines == LinesOfMachine(before_, name) || lines == LinesOfMachine(after_, name))
          << "machine " << name << " is neither as before nor as after";
    }
    const RunResult again = RunProcess(StoreWords(target));
    EXPECT_EQ(again.status, 0) << again.err;
    EXPECT_EQ(ReadStoredRows(target), after_);
  }

  /// Kills the program at its call number `count` of this system call; returns whether it made it.
  bool StoreAndKillAt(const std::string& target, const std::string& call, unsigned count) {
    Words words = {"strace",
                   "-f",
                   "-qq",
                   "-o",
                   "/dev/null",
                   "-e",
                   "trace=" + call,
                   "-e",
                   "inject=" + call + ":signal=KILL:when=" + std::to_string(count)};
    const Words store = StoreWords(target);
    words.insert(words.end(), store.begin(), store.end());
    const RunResult result = RunProcess(words);
    EXPECT_TRUE(result.status == 0 || result.status == kKilled) << result.err;
    return result.status == kKilled;
  }

  /// Kills the program at every call of this system call, or at every `step`th.
  unsigned KillAtEach(const std::string& call, unsigned step = 1) {
    unsigned kills = 0;
    for (unsigned count = 1; !HasFailure(); count += step, ++kills) {
      const std::string target = MakeTarget();
      const bool isKilled = StoreAndKillAt(target, call, count);
      SCOPED_TRACE(call + " number " + std::to_string(count));
      CheckWholeMachines(target);
      if (!isKilled) break;
    }
    return kills;
  }

  pid_t StartStore(const std::string& target) const {
    const pid_t process = fork();
    if (process == 0) _exit(Execute(StoreWords(target)));
    return process;
  }

  vtq::TemporaryDirectory directory_;
  StoredRows before_;
  StoredRows after_;
};

class KilledSqliteTest : public KilledStoreTest {};
class KilledPostgresqlTest : public KilledStoreTest {};

}  // namespace

INSTANTIATE_TEST_SUITE_P(KilledSqlite, KilledStoreTest, testing::Values("sqlite"));
INSTANTIATE_TEST_SUITE_P(KilledPostgresql, KilledStoreTest, testing::Values("postgresql"));
INSTANTIATE_TEST_SUITE_P(KilledSqlite, KilledSqliteTest, testing::Values("sqlite"));
INSTANTIATE_TEST_SUITE_P(KilledPostgresql, KilledPostgresqlTest, testing::Values("postgresql"));

TEST_P(KilledSqliteTest, AtEachWrite) { EXPECT_GT(KillAtEach("pwrite64"), 30U); }

TEST_P(KilledSqliteTest, AtEachSync) { EXPECT_GT(KillAtEach("fdatasync"), 3U); }

// The transaction is complete when the journal is removed.
TEST_P(KilledSqliteTest, AtEachRemovalOfTheJournal) { EXPECT_GE(KillAtEach("unlink"), 3U); }

TEST_P(KilledPostgresqlTest, AtManySends) { EXPECT_GT(KillAtEach("sendto", 13), 5U); }

TEST_P(KilledStoreTest, AtRandomMoments) {
  std::mt19937 random(7);
  for (int i = 0; i < 15 && !HasFailure(); ++i) {
    const std::string target = MakeTarget();
    const pid_t process = StartStore(target);
    const auto moment = static_cast<unsigned>(random() % 60000);
    usleep(moment);
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
    SCOPED_TRACE("after " + std::to_string(moment) + " us");
    CheckWholeMachines(target);
  }
}

TEST_P(KilledPostgresqlTest, WhileTheServerIsKilledAtRandomMoments) {
  PostgresqlServer& server = PostgresqlServer::Shared();
  std::mt19937 random(11);
  for (int i = 0; i < 8 && !HasFailure(); ++i) {
    const std::string target = MakeTarget();
    const pid_t process = StartStore(target);
    usleep(static_cast<unsigned>(random() % 120000));
    server.Kill();
    int status = 0;
    waitpid(process, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) <= 1);
    server.Start();
    CheckWholeMachines(target);
  }
}
