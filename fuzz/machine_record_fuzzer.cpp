// SPDX-License-Identifier: Apache-2.0

// A machine line from anywhere: what is read has the form that databases rely on.
#include <algorithm>
#include <optional>
#include <set>

#include "fuzz/fuzz.h"
#include "host/base/errors.h"
#include "host/console/text.h"
#include "host/model/address.h"
#include "host/record/machine_record.h"

namespace {

using fuzz::Require;
using pciinfo::MachineRecord;
using pciinfo::RecordedFunction;
using pciinfo::RecordedSlot;

std::optional<MachineRecord> Parsed(std::string_view text) {
  try {
    return pciinfo::ParseRecord(std::string(text));
  } catch (const pciinfo::UsageError& refusal) {
    const std::string why = refusal.what();
    Require(pciinfo::Printable(why) == why, "a refusal is printable");
    return {};
  }
}

bool IsWithin(const std::optional<unsigned>& number, unsigned highest) {
  return number.value_or(0) <= highest;
}

void CheckFunctions(const std::vector<RecordedFunction>& functions) {
  std::optional<pciinfo::DomainAddress> last;
  for (const RecordedFunction& function : functions) {
    const auto address = pciinfo::ParseDomainAddress(function.address);
    Require(address && pciinfo::FormatAddress(*address) == function.address,
            "an address has its usual form");
    Require(!last || *last < *address, "functions are sorted, and each is there once");
    Require(IsWithin(function.vendorId, 0xFFFF) && IsWithin(function.classCode, 0xFFFF) &&
                IsWithin(function.maxLinkWidth, 0xFF),
            "numbers are in their range");
    Require(pciinfo::Printable(function.driver) == function.driver, "texts are printable");
    last = address;
  }
}

void CheckSlots(const std::vector<RecordedSlot>& slots) {
  std::set<std::string> names;
  for (const RecordedSlot& slot : slots) {
    Require(names.insert(slot.name).second, "names of slots are unique");
    Require(!slot.state.empty(), "a slot has a state");
    Require(slot.sharedWith.size() < 64, "few slots share a port");
  }
}

}  // namespace

void fuzz::CheckInput(std::string_view input) {
  const auto record = Parsed(input);
  if (!record) return;
  Require(!(record->name + record->systemUuid + record->machineId).empty(),
          "a machine can be told from others");
  CheckFunctions(record->functions);
  CheckSlots(record->slots);
}
