// SPDX-License-Identifier: Apache-2.0
#include "host/store/machine_table.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "host/store/columns.h"
#include "host/store/digest.h"
#include "host/store/times.h"

namespace pciinfo {
namespace {

std::string ReadSalt(Database& database) {
  const char* const query = "SELECT value FROM setting WHERE name = 'salt'";
  if (const Value salt = database.Ask(query)) return *salt;
  database.Execute(fmt::format("INSERT INTO setting VALUES ('salt', '{}')", RandomDigits()));
  return database.Ask(query).value_or("");
}

MachineNames NamesIn(const MachineRecord& record) {
  return OnlyMeaningful({record.name, record.systemUuid, record.machineId});
}

/// The columns that every collection writes, except for the names.
Row LatestValues(const MachineRecord& record, const std::string& time, bool isComplete) {
  return {time, FlagValue(isComplete),
          TextValue(fmt::format("{}", fmt::join(record.troubles, "\n"))),
          TextValue(record.version)};
}

std::string FirstKnown(const std::string& told, const std::string& known) {
  return told.empty() ? known : told;
}

}  // namespace

MachineTable::MachineTable(Database& database, bool redact)
    : redact_(redact),
      salt_(ReadSalt(database)),
      find_(database,
            "SELECT id, name, system_uuid, machine_id, last_seen, first_seen FROM machine "
            "WHERE name = :p1 OR system_uuid IN (:p2, :p3) OR machine_id IN (:p4, :p5)",
            5, 6),
      countSlots_(database, "SELECT COUNT(*) FROM slot_fact WHERE machine = :p1 AND gone IS NULL",
                  1, 1),
      add_(database,
           "INSERT INTO machine (last_seen, complete, troubles, version, name, system_uuid, "
           "machine_id, first_seen) VALUES (:p1, :p2, :p3, :p4, :p5, :p6, :p7, :p8) RETURNING id",
           8, 1),
      update_(database,
              "UPDATE machine SET last_seen = :p1, complete = :p2, troubles = :p3, version = :p4, "
              "name = :p5, system_uuid = :p6, machine_id = :p7 WHERE id = :p8",
              8) {}

std::optional<KnownMachine> MachineTable::Find(const MachineRecord& record) {
  const MachineNames told = NamesIn(record);
  if (told.name.empty() && told.systemUuid.empty() && told.machineId.empty()) {
    throw BadRecord("it has no name, no system UUID and no machine ID to know it by");
  }
  const MachineNames digests = DigestsOf(told);
  // An unknown identifier must not find the machines that lack it.
  const auto orNull = [](const std::string& text) { return text.empty() ? Value() : text; };
  std::vector<KnownMachine> candidates;
  std::vector<KnownMachine> written;  // the same, as they are in the table
  for (const Row& row :
       find_.Query({orNull(told.name), orNull(told.systemUuid), orNull(digests.systemUuid),
                    orNull(told.machineId), orNull(digests.machineId)})) {
    written.push_back({row[0].value_or(""),
                       {row[1].value_or(""), row[2].value_or(""), row[3].value_or("")},
                       TimeOfDatabase(row[4].value_or("")),
                       TimeOfDatabase(row[5].value_or(""))});
    candidates.push_back(written.back());
    candidates.back().names = DigestsOf(candidates.back().names);
  }
  const KnownMachine* const chosen = ChooseMachine(digests, candidates);
  if (chosen == nullptr) return std::nullopt;
  return written[static_cast<std::size_t>(chosen - candidates.data())];
}

bool MachineTable::IsComplete(const std::optional<KnownMachine>& machine,
                              const MachineRecord& record) {
  if (!record.troubles.empty()) return false;
  return !machine || !record.slots.empty() ||
         countSlots_.Query({machine->id}).front().front() == "0";
}

std::string MachineTable::Add(const MachineRecord& record, const std::string& time) {
  const MachineNames names = WrittenNames(record);
  Row values = LatestValues(record, time, IsComplete(std::nullopt, record));
  for (const std::string& value : {names.name, names.systemUuid, names.machineId, time}) {
    values.push_back(TextValue(value));
  }
  return add_.Query(values).front().front().value_or("");
}

void MachineTable::Update(const KnownMachine& machine, const MachineRecord& record,
                          const std::string& time) {
  const MachineNames told = WrittenNames(record);
  Row values = LatestValues(record, time, IsComplete(machine, record));
  values.push_back(TextValue(FirstKnown(told.name, machine.names.name)));
  values.push_back(TextValue(FirstKnown(told.systemUuid, machine.names.systemUuid)));
  values.push_back(TextValue(FirstKnown(told.machineId, machine.names.machineId)));
  values.emplace_back(machine.id);
  update_.Execute(values);
}

/// The salt is there so that digests of known identifiers cannot be computed beforehand.
std::string MachineTable::DigestOf(const std::string& identifier) const {
  if (identifier.empty() || identifier.starts_with("sha256:")) return identifier;
  return Sha256(salt_ + ":" + identifier);
}

MachineNames MachineTable::DigestsOf(MachineNames names) const {
  names.systemUuid = DigestOf(names.systemUuid);
  names.machineId = DigestOf(names.machineId);
  return names;
}

MachineNames MachineTable::WrittenNames(const MachineRecord& record) const {
  return redact_ ? DigestsOf(NamesIn(record)) : NamesIn(record);
}

}  // namespace pciinfo
