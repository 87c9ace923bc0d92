// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <string>

#include "tests/runtime/temporary_directory.h"

/// A PostgreSQL server of Debian's package in a temporary directory, which only a socket in that
/// directory reaches. It ends with this process.
class PostgresqlServer final {
 public:
  PostgresqlServer();
  PostgresqlServer(const PostgresqlServer&) = delete;
  PostgresqlServer& operator=(const PostgresqlServer&) = delete;
  ~PostgresqlServer();

  /// Starts it, and waits until it answers. Throws std::runtime_error when it does not.
  void Start();
  /// Kills it, as when its machine loses power.
  void Kill();

  /// Makes an empty database and returns its address.
  std::string MakeDatabase();
  /// Returns the address of a database for this user of it ("fleet" owns all) and password.
  std::string AddressOf(const std::string& database, const std::string& user = "fleet") const;
  /// Runs a statement as the owner of all databases.
  void Run(const std::string& statement, const std::string& database = "postgres") const;

  /// The server that the tests of this process share.
  static PostgresqlServer& Shared();

 private:
  void MakeCluster() const;

  vtq::TemporaryDirectory directory_;
  pid_t process_ = -1;
  unsigned databases_ = 0;
};
