// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include "host/record/machine_record.h"

namespace pciinfo {

/// Where machines are stored, and how.
struct StoreSettings {
  std::string target;   ///< path of an SQLite file, or "postgresql://..."
  bool redact = false;  ///< digests in the place of identifiers, no serial numbers or addresses
};

/// What storing a machine changed.
enum class StoreResult {
  kNew,      ///< the machine was not known
  kChanged,  ///< its history has grown
  kSame,     ///< only the time at which it was last seen
  kOlder,    ///< nothing: a later state is stored already
};

/// Thrown for a record that cannot be stored; other records can. `what()` says why.
class BadRecord : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A database of machines that is open for writing.
class MachineStore {
 public:
  MachineStore() = default;
  MachineStore(const MachineStore&) = delete;
  MachineStore& operator=(const MachineStore&) = delete;
  virtual ~MachineStore() = default;

  /// Stores a machine in a transaction of its own: all of it or nothing. Throws BadRecord, and
  /// std::runtime_error, which names the target, when the database fails.
  virtual StoreResult Store(const MachineRecord& record) = 0;
};

/// Opens a database. A file that does not exist is made, tables that are missing too. Throws
/// std::runtime_error, which names the target without its password and says what to do.
std::unique_ptr<MachineStore> OpenMachineStore(const StoreSettings& settings);

}  // namespace pciinfo
