// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <chrono>
#include <deque>
#include <iterator>
#include <optional>

#include "host/store/card_models.h"
#include "host/store/database.h"
#include "host/store/fact_writer.h"
#include "host/store/fleet_module.h"
#include "host/store/machine_table.h"
#include "host/store/record_tables.h"
#include "host/store/schema.h"
#include "host/store/times.h"

namespace pciinfo {
namespace {

/// PostgreSQL takes no more than 2704 bytes of all columns of an index together.
void CheckLengths(const FactTable& table, const Row& row) {
  constexpr std::size_t kMost = 500;
  const auto isIndexed = [&table](std::size_t column) {
    if (column < table.keys.size()) return true;
    if (column >= table.keys.size() + table.facts.size()) return false;
    const std::string& name = table.facts[column - table.keys.size()];
    constexpr const char* kIndexed[] = {"serial_number", "firmware", "hardware_address",
                                        "model",         "slot",     "driver"};
    return std::find(std::begin(kIndexed), std::end(kIndexed), name) != std::end(kIndexed);
  };
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (row[i].value_or("").size() <= kMost || !isIndexed(i)) continue;
    throw BadRecord("a name or number in it is longer than 500 bytes: " + row[i]->substr(0, 40));
  }
}

void CheckNames(const MachineRecord& record) {
  if (record.name.size() > 500) throw BadRecord("its name is longer than 500 bytes");
}

class SqlMachineStore final : public MachineStore {
 public:
  explicit SqlMachineStore(const StoreSettings& settings)
      : database_(settings.target), redact_(settings.redact) {
    Migrate(database_);
    database_.InTransaction([this] {
      machines_.emplace(database_, redact_);
      models_.emplace(database_);
      for (const RecordTable& table : RecordTables()) writers_.emplace_back(database_, table.table);
    });
  }

  ~SqlMachineStore() override {
    if (hasNewMachine_) database_.UpdateStatistics();
  }

  StoreResult Store(const MachineRecord& record) override {
    const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    const std::string time = TimeOfRecord(record.collected, now);
    CheckNames(record);
    MachineRecord kept = record;
    if (redact_) RemoveDeviceIdentifiers(kept);
    StoreResult result = StoreResult::kNew;
    try {
      database_.InTransaction([&] { result = Write(kept, time); });
    } catch (...) {
      models_->Forget();
      throw;
    }
    hasNewMachine_ = hasNewMachine_ || result == StoreResult::kNew;
    return result;
  }

 private:
  StoreResult Write(const MachineRecord& record, const std::string& time) {
    const std::optional<KnownMachine> known = machines_->Find(record);
    const bool isComplete = machines_->IsComplete(known, record);
    if (!known) {
      WriteFacts(record, {machines_->Add(record, time), time, time, time, isComplete});
      return StoreResult::kNew;
    }
    if (time < known->lastSeen) return StoreResult::kOlder;
    machines_->Update(*known, record, time);
    const bool hasGrown =
        WriteFacts(record, {known->id, time, known->firstSeen, known->lastSeen, isComplete});
    return hasGrown ? StoreResult::kChanged : StoreResult::kSame;
  }

  bool WriteFacts(const MachineRecord& record, const Collection& collection) {
    const auto modelOf = [this](const RecordedFunction& function) {
      return models_->KeyOf(function);
    };
    bool hasGrown = false;
    for (std::size_t i = 0; i < writers_.size(); ++i) {
      const RecordTable& table = RecordTables()[i];
      const std::vector<Row> rows = table.rowsOf(record, modelOf);
      for (const Row& row : rows) CheckLengths(table.table, row);
      hasGrown = writers_[i].Write(collection, rows) || hasGrown;
    }
    return hasGrown;
  }

  Database database_;
  bool redact_;
  bool hasNewMachine_ = false;
  std::optional<MachineTable> machines_;
  std::optional<CardModels> models_;
  std::deque<FactWriter> writers_;  ///< of RecordTables()
};

}  // namespace
}  // namespace pciinfo

pciinfo::MachineStore* PciinfoOpenMachineStore(const pciinfo::StoreSettings& settings) {
  return std::make_unique<pciinfo::SqlMachineStore>(settings).release();
}
