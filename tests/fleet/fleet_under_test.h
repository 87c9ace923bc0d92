// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "tests/fakes/run_process.h"

enum class DatabaseKind { kSqlite, kPostgresql };

/// Returns the database of a kind that holds the machines of examples/fleet; the first call makes
/// it.
const std::string& ExampleFleet(DatabaseKind kind);

/// Makes an empty database. That of SQLite is a file that does not exist.
std::string EmptyDatabase(DatabaseKind kind);

/// Runs `pciinfo fleet` with these words.
RunResult RunFleet(std::vector<std::string> words);

/// Runs a statement that may write on a database of RunFleet.
void Execute(DatabaseKind kind, const std::string& database, const std::string& statement);

/// Returns the number of machines in a database, read without the program.
std::string CountMachines(DatabaseKind kind, const std::string& database);
