// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/store/database.h"
#include "host/store/fact_table.h"

namespace pciinfo {

/// A collection of a machine. Times are texts as the database gives them: "2024-05-06 07:08:09".
struct Collection {
  std::string machine;    ///< its key in the table `machine`
  std::string time;       ///< of this collection
  std::string firstSeen;  ///< of the machine's first one
  std::string lastSeen;   ///< of the one before
  bool isComplete = true;
};

/// Brings the rows of a machine in one table to what a collection tells.
class FactWriter final {
 public:
  FactWriter(Database& database, FactTable table);

  /// Returns whether the history has grown. A value that is empty or "unknown", and no row at
  /// all, is no news in a collection that is not complete: what was known stays. Must run in a
  /// transaction.
  bool Write(const Collection& collection, const std::vector<Row>& rows);

 private:
  struct Held {
    std::string firstSeen;
    Row row;
  };
  using HeldRows = std::map<Row, Held>;  ///< by their keys

  HeldRows ReadHeld(const std::string& machine);
  Row KeysOf(const Row& row) const;
  Row NameOf(const Collection& collection, const Held& held) const;
  bool HaveSameFacts(const Row& left, const Row& right) const;
  bool WriteRow(const Collection& collection, Row row, HeldRows& held);
  void Insert(const Collection& collection, const Row& row);
  void InsertCollected();
  void End(const Collection& collection, const Held& held);
  void UpdateLatest(const Collection& collection, const Held& held, const Row& row);

  FactTable table_;
  Statement read_;
  Statement insert_;
  Statement insertMany_;
  Statement close_;
  Statement remove_;
  std::unique_ptr<Statement> update_;
  std::vector<Row> inserted_;  ///< parameters of rows that are still to be inserted
};

}  // namespace pciinfo
