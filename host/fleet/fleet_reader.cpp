// SPDX-License-Identifier: Apache-2.0
#include "host/fleet/fleet_reader.h"

#include <fmt/format.h>
#include <soci/postgresql/soci-postgresql.h>
#include <soci/sqlite3/soci-sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "host/fleet/postgresql_reader.h"
#include "host/fleet/sqlite_reader.h"
#include "host/store/database_errors.h"
#include "host/store/schema.h"
#include "host/store/target.h"

namespace pciinfo {
namespace {

[[noreturn]] void FailToOpen(const std::string& target, const std::string& why) {
  throw std::runtime_error(fmt::format("{}: {}", ShownTarget(target), why));
}

/// The library does not say what is wrong with a path.
void RequireFile(const std::string& path) {
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  if (!std::filesystem::exists(status)) {
    FailToOpen(path, "there is no such file: \"pciinfo store\" makes the database");
  }
  if (!std::filesystem::is_regular_file(status)) FailToOpen(path, "this is not a file");
  if (access(path.c_str(), R_OK) != 0) FailToOpen(path, std::strerror(errno));
  if (path.find('"') != std::string::npos) {
    FailToOpen(path, "the path must not contain quotation marks");
  }
}

/// Takes the version of the schema; 0 if there is none.
class VersionSink final : public RowSink {
 public:
  void Begin(const std::vector<std::string>& /*names*/) override {}
  void Write(const DbRow& row) override {
    if (const auto* version = std::get_if<std::int64_t>(&row.at(0))) version_ = *version;
  }
  void End() override {}

  std::int64_t GetVersion() const noexcept { return version_; }

 private:
  std::int64_t version_ = 0;
};

std::int64_t SchemaVersion(FleetDatabase& database, const std::string& target) {
  VersionSink version;
  try {
    database.Ask({"SELECT MAX(version) FROM schema_version"}, version);
  } catch (const std::runtime_error& error) {
    FailToOpen(target, fmt::format("this is no database that \"pciinfo store\" has written ({})",
                                   error.what()));
  }
  return version.GetVersion();
}

void RequireSchema(FleetDatabase& database, const std::string& target) {
  const std::int64_t version = SchemaVersion(database, target);
  if (version < NewestVersion()) {
    FailToOpen(target, fmt::format("it has version {} of the schema, and this program asks version "
                                   "{}: the next \"pciinfo store\" into it migrates it",
                                   version, NewestVersion()));
  }
  if (version > NewestVersion()) {
    FailToOpen(target,
               fmt::format("a newer version of this program has written it (schema {}; this "
                           "program knows {}): update this program",
                           version, NewestVersion()));
  }
}

std::unique_ptr<FleetDatabase> OpenSqlite(const std::string& path) {
  RequireFile(path);
  auto session = std::make_unique<soci::session>();
  session->open(soci::sqlite3, fmt::format("dbname=\"{}\" readonly=true timeout=60", path));
  *session << "PRAGMA cache_size = -65536";     // 64 MiB
  *session << "PRAGMA mmap_size = 1073741824";  // reads without copying
  return MakeSqliteReader(std::move(session));
}

std::unique_ptr<FleetDatabase> OpenPostgresql(const std::string& target) {
  setenv("PGCONNECT_TIMEOUT", "15", 0);
  setenv("PGAPPNAME", "pciinfo", 0);
  auto session = std::make_unique<soci::session>();
  session->open(soci::postgresql, target);
  return MakePostgresqlReader(std::move(session));
}

}  // namespace

std::unique_ptr<FleetDatabase> OpenFleetReader(const std::string& target) {
  try {
    auto database = IsPostgresql(target) ? OpenPostgresql(target) : OpenSqlite(target);
    RequireSchema(*database, target);
    return database;
  } catch (const soci::soci_error& error) {
    FailToOpen(target, ExplainError(error, target));
  }
}

}  // namespace pciinfo

pciinfo::FleetDatabase* PciinfoOpenFleet(const std::string& target) {
  return pciinfo::OpenFleetReader(target).release();
}
