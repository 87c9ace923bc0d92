// SPDX-License-Identifier: Apache-2.0
#include "host/fleet/sqlite_reader.h"

#include <soci/sqlite3/soci-sqlite3.h>

#include <memory>
#include <stdexcept>

namespace pciinfo {
namespace {

using sqlite_api::sqlite3;
using sqlite_api::sqlite3_stmt;

struct FinalizeSqlite {
  void operator()(sqlite3_stmt* statement) const { sqlite_api::sqlite3_finalize(statement); }
};
using SqliteStatement = std::unique_ptr<sqlite3_stmt, FinalizeSqlite>;

sqlite3* HandleOf(soci::session& session) {
  return static_cast<soci::sqlite3_session_backend*>(session.get_backend())->conn_;
}

/// The database asks this about each part of a statement. That the file is open for reading only
/// does not keep a statement from writing other files (VACUUM INTO, ATTACH).
int AllowReading(void*, int action, const char*, const char*, const char*, const char*) {
  const bool isReading = action == SQLITE_SELECT || action == SQLITE_READ ||
                         action == SQLITE_FUNCTION || action == SQLITE_RECURSIVE;
  return isReading ? SQLITE_OK : SQLITE_DENY;
}

/// Throws what the database says: about the statement, or about the file.
[[noreturn]] void ThrowSqlite(sqlite3* database) {
  const int code = sqlite_api::sqlite3_errcode(database);
  const std::string said = sqlite_api::sqlite3_errmsg(database);
  if (code == SQLITE_AUTH) {
    throw std::runtime_error("the database refuses the statement: it is only read, with SELECT");
  }
  throw std::runtime_error((code == SQLITE_ERROR ? "the database refuses the statement: "
                                                 : "the database cannot be read: ") +
                           said);
}

/// Prepares the first statement of a text and moves `sql` behind it.
SqliteStatement PrepareSqlite(sqlite3* database, const char*& sql) {
  sqlite3_stmt* statement = nullptr;
  const char* rest = nullptr;
  if (sqlite_api::sqlite3_prepare_v2(database, sql, -1, &statement, &rest) != SQLITE_OK) {
    ThrowSqlite(database);
  }
  sql = rest;
  return SqliteStatement(statement);
}

SqliteStatement PrepareOnlyOne(sqlite3* database, const std::string& text) {
  const char* sql = text.c_str();
  SqliteStatement statement = PrepareSqlite(database, sql);
  if (!statement) throw std::runtime_error("there is no statement in the text");
  // Only comments and blanks are no statement.
  while (*sql != '\0') {
    if (PrepareSqlite(database, sql)) {
      throw std::runtime_error("the text has several statements: ask one at a time");
    }
  }
  return statement;
}

void BindSqlite(sqlite3_stmt* statement, const std::vector<std::string>& values) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::string name = "$" + std::to_string(i + 1);
    const int place = sqlite_api::sqlite3_bind_parameter_index(statement, name.c_str());
    sqlite_api::sqlite3_bind_text(statement, place, values[i].data(),
                                  static_cast<int>(values[i].size()), SQLITE_STATIC);
  }
}

/// Copies a text to `value`. Reuses the memory of a text that `value` already holds.
void TakeSqliteText(sqlite3_stmt* statement, int column, DbValue& value) {
  const void* bytes = sqlite_api::sqlite3_column_blob(statement, column);
  const int size = sqlite_api::sqlite3_column_bytes(statement, column);
  if (!std::holds_alternative<std::string>(value)) value.emplace<std::string>();
  std::get<std::string>(value).assign(static_cast<const char*>(bytes),
                                      static_cast<std::size_t>(size));
}

void TakeSqliteValue(sqlite3_stmt* statement, int column, DbValue& value) {
  switch (sqlite_api::sqlite3_column_type(statement, column)) {
    case SQLITE_NULL:
      value = {};
      break;
    case SQLITE_INTEGER:
      value = std::int64_t{sqlite_api::sqlite3_column_int64(statement, column)};
      break;
    case SQLITE_FLOAT:
      value = sqlite_api::sqlite3_column_double(statement, column);
      break;
    default:
      TakeSqliteText(statement, column, value);
  }
}

std::vector<std::string> SqliteNames(sqlite3_stmt* statement) {
  std::vector<std::string> names;
  const int count = sqlite_api::sqlite3_column_count(statement);
  names.reserve(static_cast<std::size_t>(count));
  for (int column = 0; column < count; ++column) {
    names.emplace_back(sqlite_api::sqlite3_column_name(statement, column));
  }
  return names;
}

class SqliteReader final : public FleetDatabase {
 public:
  explicit SqliteReader(std::unique_ptr<soci::session> session)
      : session_(std::move(session)), database_(HandleOf(*session_)) {
    sqlite_api::sqlite3_set_authorizer(database_, &AllowReading, nullptr);
  }

  void Ask(const FleetStatement& statement, RowSink& sink) override {
    const SqliteStatement prepared = PrepareOnlyOne(database_, statement.sql);
    BindSqlite(prepared.get(), statement.values);
    const std::vector<std::string> names = SqliteNames(prepared.get());
    sink.Begin(names);
    DbRow row(names.size());
    int step = sqlite_api::sqlite3_step(prepared.get());
    for (; step == SQLITE_ROW; step = sqlite_api::sqlite3_step(prepared.get())) {
      for (std::size_t i = 0; i < row.size(); ++i) {
        TakeSqliteValue(prepared.get(), static_cast<int>(i), row[i]);
      }
      sink.Write(row);
    }
    if (step != SQLITE_DONE) ThrowSqlite(database_);
    sink.End();
  }

 private:
  std::unique_ptr<soci::session> session_;
  sqlite3* database_;
};

}  // namespace

std::unique_ptr<FleetDatabase> MakeSqliteReader(std::unique_ptr<soci::session> session) {
  return std::make_unique<SqliteReader>(std::move(session));
}

}  // namespace pciinfo
