// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>
#include <vector>

/// The rows of each table, as sorted lines with the names of machines and the IDs of models in the
/// place of generated keys.
using StoredRows = std::map<std::string, std::vector<std::string>>;

/// Reads all rows of a database.
StoredRows ReadStoredRows(const std::string& target);

/// Returns the lines that a query answers, sorted, with "|" between its columns.
std::vector<std::string> AnswerOf(const std::string& target, const std::string& query);
