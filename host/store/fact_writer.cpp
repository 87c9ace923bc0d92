// SPDX-License-Identifier: Apache-2.0
#include "host/store/fact_writer.h"

#include <algorithm>

#include "host/store/times.h"

namespace pciinfo {
namespace {

/// One statement for many rows saves most of the round trips to a server.
constexpr std::size_t kMany = 16;

/// The parameters of an inserted row before its own: machine, first_seen, began_later.
constexpr std::size_t kBegin = 3;

Row Joined(Row first, const Row& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

bool IsTold(const Value& value) { return !value.value_or("").empty() && value != "unknown"; }

void FillUnknown(Row& row, const Row& known) {
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (!IsTold(row[i])) row[i] = known[i];
  }
}

}  // namespace

FactWriter::FactWriter(Database& database, FactTable table)
    : table_(std::move(table)),
      read_(database, StatementsFor(table_).read, 1, 1 + table_.Width()),
      insert_(database, InsertStatement(table_, 1), kBegin + table_.Width()),
      insertMany_(database, InsertStatement(table_, kMany), kMany * (kBegin + table_.Width())),
      close_(database, StatementsFor(table_).close, 4 + table_.keys.size()),
      remove_(database, StatementsFor(table_).remove, 2 + table_.keys.size()) {
  const std::string update = StatementsFor(table_).update;
  if (update.empty()) return;
  update_ =
      std::make_unique<Statement>(database, update, table_.latest.size() + 2 + table_.keys.size());
}

bool FactWriter::Write(const Collection& collection, const std::vector<Row>& rows) {
  HeldRows held = ReadHeld(collection.machine);
  inserted_.clear();
  if (!collection.isComplete && rows.empty()) return false;
  bool hasGrown = false;
  for (const Row& row : rows) hasGrown = WriteRow(collection, row, held) || hasGrown;
  for (const auto& [keys, rest] : held) End(collection, rest);
  InsertCollected();
  return hasGrown || !held.empty();
}

FactWriter::HeldRows FactWriter::ReadHeld(const std::string& machine) {
  HeldRows held;
  for (Row& row : read_.Query({machine})) {
    std::string firstSeen = TimeOfDatabase(row.front().value_or(""));
    row.erase(row.begin());
    Row keys = KeysOf(row);
    held.emplace(std::move(keys), Held{std::move(firstSeen), std::move(row)});
  }
  return held;
}

Row FactWriter::KeysOf(const Row& row) const {
  return {row.begin(), row.begin() + static_cast<std::ptrdiff_t>(table_.keys.size())};
}

Row FactWriter::NameOf(const Collection& collection, const Held& held) const {
  return Joined({collection.machine, held.firstSeen}, KeysOf(held.row));
}

bool FactWriter::HaveSameFacts(const Row& left, const Row& right) const {
  const auto end = static_cast<std::ptrdiff_t>(table_.Width() - table_.latest.size());
  return std::equal(left.begin(), left.begin() + end, right.begin());
}

bool FactWriter::WriteRow(const Collection& collection, Row row, HeldRows& held) {
  const auto found = held.find(KeysOf(row));
  if (found == held.end()) {
    Insert(collection, row);
    return true;
  }
  const Held known = std::move(found->second);
  held.erase(found);
  if (!collection.isComplete) FillUnknown(row, known.row);
  if (HaveSameFacts(row, known.row)) {
    if (row != known.row) UpdateLatest(collection, known, row);
    return false;
  }
  End(collection, known);
  Insert(collection, row);
  return true;
}

void FactWriter::Insert(const Collection& collection, const Row& row) {
  const Value beganLater = FlagValue(collection.time != collection.firstSeen);
  inserted_.push_back(Joined({collection.machine, collection.time, beganLater}, row));
}

void FactWriter::InsertCollected() {
  std::size_t next = 0;
  for (; next + kMany <= inserted_.size(); next += kMany) {
    Row parameters;
    for (std::size_t i = next; i < next + kMany; ++i) {
      parameters.insert(parameters.end(), inserted_[i].begin(), inserted_[i].end());
    }
    insertMany_.Execute(parameters);
  }
  for (; next < inserted_.size(); ++next) insert_.Execute(inserted_[next]);
}

/// A row that began at the very same moment has held no time: it was told by another version of
/// this program about the same capture.
void FactWriter::End(const Collection& collection, const Held& held) {
  const Row name = NameOf(collection, held);
  if (held.firstSeen == collection.time) return remove_.Execute(name);
  close_.Execute(Joined({collection.time, collection.lastSeen}, name));
}

void FactWriter::UpdateLatest(const Collection& collection, const Held& held, const Row& row) {
  const auto count = static_cast<std::ptrdiff_t>(table_.latest.size());
  update_->Execute(Joined({row.end() - count, row.end()}, NameOf(collection, held)));
}

}  // namespace pciinfo
