// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "host/record/machine_record.h"
#include "host/store/database.h"
#include "host/store/machine_matching.h"

namespace pciinfo {

/// The table `machine`.
class MachineTable final {
 public:
  /// `redact`: whether identifiers are written as digests. Must run in a transaction, as must all
  /// functions.
  MachineTable(Database& database, bool redact);

  /// Returns the machine that a record is about, if it is known. Throws BadRecord for a record that
  /// names no machine.
  std::optional<KnownMachine> Find(const MachineRecord& record);

  /// Returns whether a record tells all of its machine. It does not when something could not be
  /// collected, and when it tells no slots of a machine that has some: users without the rights of
  /// root cannot read the firmware's tables.
  bool IsComplete(const std::optional<KnownMachine>& machine, const MachineRecord& record);

  /// Adds a machine that was collected at `time`; returns its key.
  std::string Add(const MachineRecord& record, const std::string& time);

  /// Writes what a later record tells of a known machine itself.
  void Update(const KnownMachine& machine, const MachineRecord& record, const std::string& time);

 private:
  std::string DigestOf(const std::string& identifier) const;
  MachineNames DigestsOf(MachineNames names) const;
  MachineNames WrittenNames(const MachineRecord& record) const;

  bool redact_;
  std::string salt_;
  Statement find_;
  Statement countSlots_;
  Statement add_;
  Statement update_;
};

}  // namespace pciinfo
