// SPDX-License-Identifier: Apache-2.0
#include "host/store/database_errors.h"

#include <fmt/format.h>
#include <soci/postgresql/soci-postgresql.h>
#include <soci/sqlite3/soci-sqlite3.h>

#include <algorithm>

#include "host/store/target.h"

namespace pciinfo {
namespace {

/// Returns the lines as one, without what the library puts before a message of the system.
std::string OneLine(std::string text) {
  for (const char* heading : {"Cannot establish connection to the database.",
                              "Cannot execute query.", "Cannot prepare statement."}) {
    if (text.starts_with(heading)) text.erase(0, std::string(heading).size());
  }
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::replace(text.begin(), text.end(), '\t', ' ');
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return "the database does not say why";
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string ExplainSqlite(const soci::sqlite3_soci_error& error) {
  switch (error.result() & 0xff) {  // without the details
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return "another program has kept it locked for a minute: try again later";
    case SQLITE_READONLY:
      return "the file or its directory cannot be written: make both writable";
    case SQLITE_CANTOPEN:
      return "the file cannot be opened: the file and its directory must be readable and writable";
    case SQLITE_FULL:
      return "the disk is full";
    case SQLITE_NOTADB:
      return "the file is not an SQLite database";
    case SQLITE_CORRUPT:
      return "the database is damaged: restore it from a backup";
    case SQLITE_IOERR:
      return "the file cannot be read or written; is the disk full?";
    default:
      return OneLine(error.get_error_message());
  }
}

std::string ExplainPostgresql(const soci::postgresql_soci_error& error) {
  const std::string state = error.sqlstate();
  std::string text = OneLine(error.get_error_message());
  const auto isOf = [&state](const char* group) { return state.starts_with(group); };
  if (isOf("53100")) return "the disk of the server is full: " + text;
  if (isOf("25006")) return "the database cannot be written: " + text;
  if (isOf("42501")) return "this user lacks a right: " + text;
  if (isOf("08") || isOf("57P") || text.find("connection") != std::string::npos) {
    return "the connection is lost: " + text;
  }
  return text;
}

}  // namespace

std::string ExplainError(const soci::soci_error& error, const std::string& target) {
  if (const auto* sqlite = dynamic_cast<const soci::sqlite3_soci_error*>(&error)) {
    return ExplainSqlite(*sqlite);
  }
  if (const auto* postgresql = dynamic_cast<const soci::postgresql_soci_error*>(&error)) {
    return WithoutPassword(ExplainPostgresql(*postgresql), target);
  }
  return WithoutPassword(OneLine(error.get_error_message()), target);
}

}  // namespace pciinfo
