// SPDX-License-Identifier: Apache-2.0
#include "host/store/database.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <soci/postgresql/soci-postgresql.h>
#include <soci/sqlite3/soci-sqlite3.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "host/store/database_errors.h"
#include "host/store/target.h"
#include "runtime/file_descriptor.h"

namespace pciinfo {
namespace {

constexpr int kPatienceSeconds = 60;  ///< for the transaction of another writer

/// Makes the file unless it exists; returns what is wrong with the path, which the library would
/// not tell, or nothing. The library would let everybody read a new file.
std::string MakeFile(const std::string& path) {
  if (path.find('"') != std::string::npos) return "the path must not contain quotation marks";
  const vtq::FileDescriptor made(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  if (made.IsOpen()) return "";
  return errno == ENOENT ? "the directory of the file does not exist" : std::strerror(errno);
}

/// Texts of times without a time zone are in UTC in both systems.
constexpr const char* kPostgresqlSettings[] = {
    "SET TIME ZONE 'UTC'", "SET client_encoding = 'UTF8'", "SET client_min_messages = warning"};

/// Any number does, if all versions of this program use the same.
constexpr const char* kTakeTurn = "SELECT pg_advisory_xact_lock(7164917621)";

}  // namespace

Database::Database(const std::string& target)
    : target_(target), isPostgresql_(pciinfo::IsPostgresql(target)) {
  const std::string wrong = isPostgresql_ ? "" : MakeFile(target_);
  if (!wrong.empty()) Fail(wrong);
  Guard([this] { Connect(); });
}

void Database::Guard(const std::function<void()>& work) const {
  try {
    work();
  } catch (const soci::soci_error& error) {
    Fail(ExplainError(error, target_));
  }
}

void Database::Fail(const std::string& why) const {
  throw std::runtime_error(fmt::format("{}: {}", ShownTarget(target_), why));
}

void Database::Connect() {
  if (!isPostgresql_) {
    session_.open(soci::sqlite3,
                  fmt::format("dbname=\"{}\" timeout={}", target_, kPatienceSeconds));
    Execute("PRAGMA cache_size = -65536");  // 64 MiB
    return;
  }
  setenv("PGCONNECT_TIMEOUT", "15", 0);
  setenv("PGAPPNAME", "pciinfo", 0);
  session_.open(soci::postgresql, target_);
  for (const char* setting : kPostgresqlSettings) Execute(setting);
}

void Database::Begin() {
  // A transaction that first reads and then writes would fail where another one writes between.
  Execute(isPostgresql_ ? "BEGIN" : "BEGIN IMMEDIATE");
  if (isPostgresql_) Execute(kTakeTurn);
}

void Database::Rollback() noexcept {
  try {
    Execute("ROLLBACK");
  } catch (...) {  // the connection is lost, or the database has rolled back itself
  }
}

void Database::InTransaction(const std::function<void()>& work) {
  Guard([&] {
    try {
      Begin();
      work();
      Execute("COMMIT");
    } catch (...) {
      Rollback();
      throw;
    }
  });
}

void Database::UpdateStatistics() noexcept {
  if (isPostgresql_) return;
  try {
    Execute("PRAGMA analysis_limit = 400");
    Execute("ANALYZE");
  } catch (...) {  // questions are answered without them, only later
  }
}

void Database::Execute(const std::string& statement) { session_ << statement; }

Value Database::Ask(const std::string& query) {
  const std::vector<Row> rows = Statement(*this, query, 0, 1).Query({});
  return rows.empty() ? std::nullopt : rows.front().front();
}

Statement::Statement(Database& database, const std::string& text, std::size_t parameters,
                     std::size_t columns)
    : in_(parameters),
      inStates_(parameters),
      out_(columns),
      outStates_(columns),
      statement_(database.GetSession()) {
  for (std::size_t i = 0; i < parameters; ++i) statement_.exchange(soci::use(in_[i], inStates_[i]));
  for (std::size_t i = 0; i < columns; ++i) statement_.exchange(soci::into(out_[i], outStates_[i]));
  statement_.alloc();
  statement_.prepare(text);
  statement_.define_and_bind();
}

void Statement::Bind(const Row& parameters) {
  for (std::size_t i = 0; i < in_.size(); ++i) {
    inStates_[i] = parameters.at(i) ? soci::i_ok : soci::i_null;
    in_[i] = parameters[i].value_or("");
  }
}

void Statement::Execute(const Row& parameters) {
  Bind(parameters);
  statement_.execute(true);
}

std::vector<Row> Statement::Query(const Row& parameters) {
  Bind(parameters);
  std::vector<Row> rows;
  statement_.execute(false);
  while (statement_.fetch()) {
    Row& row = rows.emplace_back();
    row.reserve(out_.size());
    for (std::size_t i = 0; i < out_.size(); ++i) {
      row.push_back(outStates_[i] == soci::i_null ? Value() : out_[i]);
    }
  }
  return rows;
}

}  // namespace pciinfo
