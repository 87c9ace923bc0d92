// SPDX-License-Identifier: Apache-2.0
#include "tests/fleet/fleet_under_test.h"

#include <soci/postgresql/soci-postgresql.h>
#include <soci/soci.h>
#include <soci/sqlite3/soci-sqlite3.h>

#include <map>
#include <stdexcept>

#include "tests/runtime/temporary_directory.h"
#include "tests/store/postgresql_server.h"

namespace {

soci::session Connect(DatabaseKind kind, const std::string& database) {
  if (kind == DatabaseKind::kPostgresql) return {soci::postgresql, database};
  return {soci::sqlite3, "dbname=" + database};
}

void StoreMachines(const std::string& database, const std::string& file, bool redact = false) {
  std::vector<std::string> words = {PCIINFO_PROGRAM, "store", database,
                                    std::string(FLEET_MACHINES) + "/" + file};
  if (redact) words.emplace_back("--redact");
  const RunResult result = RunProcess(words);
  if (result.status != 0) throw std::runtime_error(result.err);
}

std::string StoredFleet(DatabaseKind kind) {
  std::string database = EmptyDatabase(kind);
  StoreMachines(database, "wednesday.jsonl");
  StoreMachines(database, "monday.jsonl");
  StoreMachines(database, "redacted.jsonl", true);
  return database;
}

}  // namespace

const std::string& ExampleFleet(DatabaseKind kind) {
  static std::map<DatabaseKind, std::string> fleets;
  const auto [fleet, isNew] = fleets.try_emplace(kind);
  if (isNew) fleet->second = StoredFleet(kind);
  return fleet->second;
}

std::string EmptyDatabase(DatabaseKind kind) {
  if (kind == DatabaseKind::kPostgresql) return PostgresqlServer::Shared().MakeDatabase();
  static const vtq::TemporaryDirectory directory;
  static int count = 0;
  return directory / ("fleet" + std::to_string(++count) + ".db");
}

RunResult RunFleet(std::vector<std::string> words) {
  words.insert(words.begin(), {PCIINFO_PROGRAM, "fleet"});
  return RunProcess(words);
}

void Execute(DatabaseKind kind, const std::string& database, const std::string& statement) {
  Connect(kind, database) << statement;
}

std::string CountMachines(DatabaseKind kind, const std::string& database) {
  soci::session session = Connect(kind, database);
  int count = 0;
  session << "SELECT COUNT(*) FROM machine", soci::into(count);
  return std::to_string(count);
}
