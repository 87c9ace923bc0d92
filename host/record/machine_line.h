// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/check/finding.h"
#include "host/check/machine_facts.h"
#include "host/model/machine_identity.h"
#include "host/record/machine_record.h"
#include "host/record/machine_stamp.h"
#include "runtime/repository.h"

namespace pciinfo {

/// Everything that was collected of a machine.
struct CollectedMachine {
  MachineStamp stamp;
  MachineIdentity identity;
  MachineFacts facts;
  std::vector<CheckFinding> findings;
  std::vector<std::string> notRead;   ///< what could not be read and why, one sentence each
  std::vector<std::string> troubles;  ///< those of them that are failures
};

/// The classes that CollectMachine reads.
std::vector<std::string> RecordedClasses();

/// Reads the machine from the instances of RecordedClasses() and from this process's /sys and /etc.
/// Name, time and what could not be read are left to the caller.
CollectedMachine CollectMachine(const vtq::Namespace& repository);

/// Whether a serial number or hardware address tells nothing: it consists of the one character that
/// devices without such a number, or redacted captures, have.
bool IsBlankIdentifier(const std::string& text);

/// Returns the machine line: one line of JSON, without its end; docs/formats.md describes it.
std::string MachineLine(const CollectedMachine& machine);

/// Returns the record of the machine: what ParseRecord reads from its line.
MachineRecord RecordOf(const CollectedMachine& machine);

}  // namespace pciinfo
