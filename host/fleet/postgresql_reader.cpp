// SPDX-License-Identifier: Apache-2.0
#include "host/fleet/postgresql_reader.h"

#include <fmt/format.h>
#include <libpq-fe.h>
#include <soci/postgresql/soci-postgresql.h>

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string_view>

namespace pciinfo {
namespace {

struct ClearResult {
  void operator()(PGresult* result) const { PQclear(result); }
};
using PgResult = std::unique_ptr<PGresult, ClearResult>;

// Of the server's catalogue pg_type, where these numbers never change.
enum TypeNumber : Oid {
  kBool = 16,
  kInt8 = 20,
  kInt2 = 21,
  kInt4 = 23,
  kOid = 26,
  kFloat4 = 700,
  kFloat8 = 701,
  kTimestampTz = 1184,
  kNumeric = 1700,
};

/// A superuser's rights to read and write files of the server are put away.
constexpr const char* kPutRightsAway =
    "SELECT set_config('role', 'pg_read_all_data', true) "
    "WHERE current_setting('is_superuser') = 'on'";

// What a statement may read is decided by the roles of the user; that it writes nothing, here.
// Machine-made code does not pay for itself in a statement of less than a second.
constexpr const char* kBeginReading[] = {
    "BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY",
    "SET LOCAL TimeZone = 'UTC'",
    "SET LOCAL DateStyle = 'ISO'",
    "SET LOCAL jit = off",
    "SET LOCAL cursor_tuple_fraction = 1",  // all rows are fetched
    "SET LOCAL work_mem = '64MB'",          // all cards of 10,000 machines are sorted in memory
    kPutRightsAway,
};

void RequireResult(const PGresult* result, PGconn* connection) {
  switch (PQresultStatus(result)) {
    case PGRES_TUPLES_OK:
    case PGRES_SINGLE_TUPLE:
    case PGRES_COMMAND_OK:
      return;
    default:
      break;
  }
  if (PQstatus(connection) == CONNECTION_BAD) {
    throw std::runtime_error("the connection to the database is lost: ask again");
  }
  const char* primary =
      result == nullptr ? nullptr : PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY);
  std::string said = primary == nullptr ? PQerrorMessage(connection) : primary;
  while (said.ends_with('\n')) said.pop_back();
  throw std::runtime_error("the database refuses the statement: " + said);
}

/// A number that no 64-bit integer holds becomes the nearest real.
DbValue PgNumber(std::string_view text) {
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.begin(), text.end(), number);
  if (error == std::errc() && end == text.end()) return number;
  return std::strtod(std::string(text).c_str(), nullptr);
}

/// "2024-05-06 07:08:09+00" without the time zone, as SQLite has it.
std::string_view PgTime(std::string_view text) {
  if (text.ends_with("+00")) text.remove_suffix(3);
  return text;
}

/// Copies a text to `value`. Reuses the memory of a text that `value` already holds.
void TakePgText(std::string_view text, DbValue& value) {
  if (!std::holds_alternative<std::string>(value)) value.emplace<std::string>();
  std::get<std::string>(value).assign(text);
}

void TakePgValue(const PGresult* result, int column, DbValue& value) {
  if (PQgetisnull(result, 0, column) != 0) {
    value = {};
    return;
  }
  const std::string_view text(PQgetvalue(result, 0, column),
                              static_cast<std::size_t>(PQgetlength(result, 0, column)));
  switch (PQftype(result, column)) {
    case kBool:
      value = text == "t";
      break;
    case kInt8:
    case kInt2:
    case kInt4:
    case kOid:
    case kFloat4:
    case kFloat8:
    case kNumeric:
      value = PgNumber(text);
      break;
    case kTimestampTz:
      TakePgText(PgTime(text), value);
      break;
    default:
      TakePgText(text, value);
  }
}

std::vector<std::string> PgNames(const PGresult* result) {
  std::vector<std::string> names;
  const int count = PQnfields(result);
  names.reserve(static_cast<std::size_t>(count));
  for (int column = 0; column < count; ++column) names.emplace_back(PQfname(result, column));
  return names;
}

class PostgresqlReader final : public FleetDatabase {
 public:
  explicit PostgresqlReader(std::unique_ptr<soci::session> session)
      : session_(std::move(session)),
        connection_(
            static_cast<soci::postgresql_session_backend*>(session_->get_backend())->conn_) {
    for (const char* statement : kBeginReading) Run(statement);
  }

  void Ask(const FleetStatement& statement, RowSink& sink) override {
    // A cursor takes nothing but a query that changes no table, so that the server refuses COPY,
    // DO and SET. Built-in questions go without: for a cursor the server uses one processor only.
    if (statement.isOfUser) {
      Run("DECLARE answer NO SCROLL CURSOR FOR " + statement.sql);
      return Stream({"FETCH ALL FROM answer"}, sink);
    }
    Stream(statement, sink);
  }

 private:
  /// The server takes one statement a call in this way.
  void Run(const std::string& sql) {
    const PgResult result(
        PQexecParams(connection_, sql.c_str(), 0, nullptr, nullptr, nullptr, nullptr, 0));
    RequireResult(result.get(), connection_);
  }

  void Stream(const FleetStatement& statement, RowSink& sink) {
    std::vector<const char*> values;
    values.reserve(statement.values.size());
    for (const std::string& value : statement.values) values.push_back(value.c_str());
    PQsendQueryParams(connection_, statement.sql.c_str(), static_cast<int>(values.size()), nullptr,
                      values.data(), nullptr, nullptr, 0);
    PQsetSingleRowMode(connection_);
    bool hasBegun = false;
    DbRow row;
    while (const PgResult result{PQgetResult(connection_)}) {
      RequireResult(result.get(), connection_);
      if (!hasBegun) sink.Begin(PgNames(result.get()));
      hasBegun = true;
      if (PQntuples(result.get()) > 0) WriteRow(result.get(), row, sink);
    }
    sink.End();
  }

  /// Reuses the memory of the values that `row` already holds.
  static void WriteRow(const PGresult* result, DbRow& row, RowSink& sink) {
    row.resize(static_cast<std::size_t>(PQnfields(result)));
    for (std::size_t i = 0; i < row.size(); ++i) TakePgValue(result, static_cast<int>(i), row[i]);
    sink.Write(row);
  }

  std::unique_ptr<soci::session> session_;
  PGconn* connection_;
};

}  // namespace

std::unique_ptr<FleetDatabase> MakePostgresqlReader(std::unique_ptr<soci::session> session) {
  return std::make_unique<PostgresqlReader>(std::move(session));
}

}  // namespace pciinfo
