// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <soci/soci.h>

#include <functional>
#include <string>

#include "host/store/values.h"

namespace pciinfo {

/// A connection to the database of a target.
class Database final {
 public:
  /// Connects; makes the file of an SQLite database that does not exist, which only its owner may
  /// read. Throws std::runtime_error, which names the target without its password.
  explicit Database(const std::string& target);

  bool IsPostgresql() const noexcept { return isPostgresql_; }
  soci::session& GetSession() noexcept { return session_; }

  /// Calls `work` in a transaction, which only one writer has at a time; others wait for their
  /// turn. Nothing is written when it throws. Throws std::runtime_error, which names the target,
  /// when the database fails; what else `work` throws is passed on.
  void InTransaction(const std::function<void()>& work);

  /// Calls `work`. Throws std::runtime_error, which names the target, when the database fails.
  void Guard(const std::function<void()>& work) const;

  /// Throws std::runtime_error, which names the target.
  [[noreturn]] void Fail(const std::string& why) const;

  /// Lets SQLite sample its tables, so that it reads them in an order that suits what they contain.
  /// A server does so by itself. Failures are ignored.
  void UpdateStatistics() noexcept;

  /// Executes a statement that has no parameters.
  void Execute(const std::string& statement);

  /// Returns the first value of the first row that a query without parameters answers; nothing for
  /// no row.
  Value Ask(const std::string& query);

 private:
  void Connect();
  void Begin();
  void Rollback() noexcept;

  std::string target_;
  bool isPostgresql_;
  soci::session session_;
};

/// A statement that is prepared once and executed many times.
class Statement final {
 public:
  /// `text` names its parameters :p1, :p2, ... in this order; `columns` is how many columns its
  /// answer has.
  Statement(Database& database, const std::string& text, std::size_t parameters,
            std::size_t columns = 0);

  void Execute(const Row& parameters);
  /// Executes it and returns all rows of its answer.
  std::vector<Row> Query(const Row& parameters);

 private:
  void Bind(const Row& parameters);

  std::vector<std::string> in_;
  std::vector<soci::indicator> inStates_;
  std::vector<std::string> out_;
  std::vector<soci::indicator> outStates_;
  soci::statement statement_;
};

}  // namespace pciinfo
