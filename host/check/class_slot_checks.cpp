// SPDX-License-Identifier: Apache-2.0

// The checks of published slots and of the functions in them.

#include <fmt/format.h>

#include <map>
#include <unordered_map>

#include "host/check/class_checks.h"
#include "host/check/facts_index.h"
#include "host/console/text.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TVTQStatusCode;

constexpr unsigned kInUse = 4;        // SMBIOS 7.10.3
constexpr unsigned kMaxLength = 127;  // the plug-in reads the length as a signed byte
constexpr unsigned kNoSegment = 0xFFFF;
constexpr unsigned kNoSegmentByte = 0xFF;

/// A slot record with the running number that assigns functions to it.
struct NumberedSlot {
  unsigned number;
  const SlotRecord* record;
};

unsigned CountPeers(const SlotRecord& record) {
  const bool counted = record.length >= kLengthWithAddress && record.peerCount <= kMaxPeers;
  return counted ? record.peerCount : 0;
}

/// The number of slots that are published for a record.
unsigned CountPublished(const SlotRecord& record) {
  return record.length > kMaxLength ? 1 : 1 + CountPeers(record);
}

std::vector<NumberedSlot> Numbered(const ClassFacts& facts) {
  std::vector<NumberedSlot> slots;
  unsigned number = 1;
  for (const SlotRecord& record : facts.slotRecords.records) {
    slots.push_back({number, &record});
    number += 1 + CountPeers(record);
  }
  return slots;
}

std::string TagOf(unsigned number) { return fmt::format("Tag {}", number); }

AffectedObject SlotObject(const SlotIndex& slots, unsigned number, std::string detail) {
  const std::string tag = TagOf(number);
  return {tag, slots.PathOf(tag), std::move(detail)};
}

std::string AddressDetail(const SlotRecord& record) {
  return fmt::format("{:04x}:{}", record.segment, FormatAddress(record.address));
}

bool HasAddress(const SlotRecord& record) { return record.length >= kLengthWithAddress; }

/// Whether an address is one that firmware writes if there is none. Bus ff may be real.
bool IsPlaceholder(const KernelIndex& kernel, const SlotRecord& record) {
  const PciAddress& at = record.address;
  if (record.segment == kNoSegment || record.segment == kNoSegmentByte) return true;
  if (at == PciAddress{0, 0, 0}) return true;
  const bool isLast = at == PciAddress{0xFF, 0x1F, 7} || at == PciAddress{0xFF, 0, 0};
  return isLast && !kernel.IsKnown(at);
}

bool KnowsFunctions(const ClassFacts& facts) {
  return !facts.functions.empty() || (facts.list && !facts.list->empty());
}

bool IsKnownInSegment(const ClassFacts& facts, const KernelIndex& kernel,
                      const SlotRecord& record) {
  if (record.segment == 0) return kernel.IsKnown(record.address);
  return facts.functions.count({record.segment, record.address}) != 0;
}

/// The slots that have an address and for which fits(KernelIndex, SlotRecord) is true.
template <class Fits>
std::vector<AffectedObject> SlotsThat(const ClassFacts& facts, const Fits& fits) {
  const KernelIndex kernel(facts);
  const SlotIndex slots(facts);
  std::vector<AffectedObject> objects;
  for (const NumberedSlot& slot : Numbered(facts)) {
    if (!HasAddress(*slot.record) || !fits(kernel, *slot.record)) continue;
    objects.push_back(SlotObject(slots, slot.number, AddressDetail(*slot.record)));
  }
  return objects;
}

std::vector<AffectedObject> InUseWithPlaceholder(const ClassFacts& facts) {
  return SlotsThat(facts, [](const KernelIndex& kernel, const SlotRecord& record) {
    return record.usage == kInUse && IsPlaceholder(kernel, record);
  });
}

std::vector<AffectedObject> UnusedWithPlaceholder(const ClassFacts& facts) {
  return SlotsThat(facts, [](const KernelIndex& kernel, const SlotRecord& record) {
    return record.usage != kInUse && IsPlaceholder(kernel, record);
  });
}

bool IsPlacedInUse(const KernelIndex& kernel, const SlotRecord& record) {
  return record.usage == kInUse && !IsPlaceholder(kernel, record);
}

std::vector<AffectedObject> InUseWithoutFunction(const ClassFacts& facts) {
  if (!KnowsFunctions(facts)) return {};
  return SlotsThat(facts, [&facts](const KernelIndex& kernel, const SlotRecord& record) {
    return IsPlacedInUse(kernel, record) && !IsKnownInSegment(facts, kernel, record);
  });
}

std::vector<AffectedObject> OnBusZero(const ClassFacts& facts) {
  return SlotsThat(facts, [](const KernelIndex& kernel, const SlotRecord& record) {
    return IsPlacedInUse(kernel, record) && record.address.bus == 0;
  });
}

std::vector<AffectedObject> InOtherDomain(const ClassFacts& facts) {
  return SlotsThat(facts, [](const KernelIndex& kernel, const SlotRecord& record) {
    return IsPlacedInUse(kernel, record) && record.segment != 0;
  });
}

std::vector<AffectedObject> WithShortRecord(const ClassFacts& facts) {
  if (!facts.slotRecords.haveAddresses) return {};
  const SlotIndex slots(facts);
  std::vector<AffectedObject> objects;
  for (const NumberedSlot& slot : Numbered(facts)) {
    if (HasAddress(*slot.record)) continue;
    objects.push_back(
        SlotObject(slots, slot.number, fmt::format("record of {} bytes", slot.record->length)));
  }
  return objects;
}

std::vector<AffectedObject> WithDriftingNumber(const ClassFacts& facts) {
  const SlotIndex slots(facts);
  std::vector<AffectedObject> objects;
  for (const NumberedSlot& slot : Numbered(facts)) {
    if (CountPublished(*slot.record) == 1 + CountPeers(*slot.record)) continue;
    objects.push_back(SlotObject(slots, slot.number,
                                 fmt::format("record of {} bytes with {} peer groups",
                                             slot.record->length, slot.record->peerCount)));
  }
  return objects;
}

/// Functions are assigned to slots by position, not by tag: if a slot is missing, the slots after
/// it move up.
std::vector<AffectedObject> OutOfPlace(const ClassFacts& facts) {
  std::vector<AffectedObject> objects;
  unsigned position = 0;
  for (const Slot& slot : facts.slots.slots) {
    ++position;
    if (slot.tag == TagOf(position)) continue;
    objects.push_back({slot.tag, slot.path, fmt::format("at position {}", position)});
  }
  return objects;
}

std::vector<AffectedObject> UnpublishedSlots(const ClassFacts& facts) {
  std::size_t expected = 0;
  for (const SlotRecord& record : facts.slotRecords.records) expected += CountPublished(record);
  const std::size_t published = facts.slots.slots.size();
  if (published >= expected) return {};
  return {{"slots", "", fmt::format("{} of {} are published", published, expected)}};
}

/// The records by the tag of their slot. Those of peer groups have none.
std::unordered_map<std::string, const SlotRecord*> RecordsByTag(const ClassFacts& facts) {
  std::unordered_map<std::string, const SlotRecord*> records;
  for (const NumberedSlot& slot : Numbered(facts)) records.emplace(TagOf(slot.number), slot.record);
  return records;
}

/// The plug-in compares only the bus of a slot's address.
std::vector<AffectedObject> OnSlotBusButOtherDevice(const ClassFacts& facts) {
  std::vector<AffectedObject> objects;
  const auto records = RecordsByTag(facts);
  for (const Slot& slot : facts.slots.slots) {
    const auto found = records.find(slot.tag);
    if (found == records.end() || !HasAddress(*found->second)) continue;
    const PciAddress& at = found->second->address;
    for (const PciFunction& function : slot.functions) {
      if (!function.address || function.address->bus != at.bus) continue;
      if (function.address->device == at.device) continue;
      objects.push_back(
          {AddressText(function), function.path, slot.tag + " is at " + FormatAddress(at)});
    }
  }
  return objects;
}

/// The slots that share a key with another slot; empty keys do not count.
template <class KeyOf>
std::vector<AffectedObject> Sharing(const ClassFacts& facts, const KeyOf& keyOf) {
  std::map<std::string, unsigned> counts;
  for (const Slot& slot : facts.slots.slots) ++counts[keyOf(slot)];
  std::vector<AffectedObject> objects;
  for (const Slot& slot : facts.slots.slots) {
    const std::string key = keyOf(slot);
    if (!key.empty() && counts[key] > 1) objects.push_back({slot.tag, slot.path, key});
  }
  return objects;
}

std::vector<AffectedObject> WithSharedId(const ClassFacts& facts) {
  return Sharing(facts, [](const Slot& slot) {
    return slot.id ? fmt::format("slot ID {}", *slot.id) : std::string();
  });
}

std::vector<AffectedObject> WithSharedDesignation(const ClassFacts& facts) {
  return Sharing(
      facts, [](const Slot& slot) { return TrimEnd(Printable(slot.designation.value_or(""))); });
}

/// If functions are assigned to slots by slot ID, the first slot with the number gets them.
std::vector<AffectedObject> ByAmbiguousNumber(const ClassFacts& facts) {
  if (facts.slotRecords.haveAddresses) return {};
  std::map<unsigned, unsigned> counts;
  for (const Slot& slot : facts.slots.slots) {
    if (slot.id) ++counts[*slot.id & 0xFFU];
  }
  std::vector<AffectedObject> objects;
  for (const PublishedFunction& published : facts.published) {
    const unsigned number = published.slotNumber.value_or(0);
    const unsigned count = counts[number];
    if (number == 0 || count < 2) continue;
    objects.push_back({AddressText(published.function), published.function.path,
                       fmt::format("{} slots have the number {}", count, number)});
  }
  return objects;
}

bool AreTablesMissing(const ClassFacts& facts) {
  return facts.slotRecords.opened == TVTQStatusCode::kNotFound;
}

std::vector<AffectedObject> NoTables(const ClassFacts& facts) {
  if (!AreTablesMissing(facts)) return {};
  return {{"/sys/firmware/dmi/tables", "",
           facts.isCapture ? "not in this capture" : "not on this machine"}};
}

std::vector<AffectedObject> UnreadableTables(const ClassFacts& facts) {
  const auto status = facts.slotRecords.opened;
  if (status == TVTQStatusCode::kSuccess || AreTablesMissing(facts)) return {};
  const char* why = status == TVTQStatusCode::kAccessDenied  ? "this user may not read them"
                    : status == TVTQStatusCode::kCorruptData ? "they are damaged"
                                                             : "reading them failed";
  return {{"/sys/firmware/dmi/tables", "", why}};
}

std::vector<AffectedObject> NoRecords(const ClassFacts& facts) {
  const SlotRecords& slots = facts.slotRecords;
  if (slots.opened != TVTQStatusCode::kSuccess || !slots.records.empty()) return {};
  return {{"/sys/firmware/dmi/tables", "", ""}};
}

std::vector<AffectedObject> NoAddresses(const ClassFacts& facts) {
  if (facts.slotRecords.records.empty() || facts.slotRecords.haveAddresses) return {};
  return {{"/sys/firmware/dmi/tables", "", ""}};
}

const std::vector<ClassCheck> kSlotClassChecks = {
    {"slot-tables-missing", Severity::kNote, "There are no SMBIOS tables, so no slot is published.",
     "Physical machines have them; a capture contains them only if it was made as root.",
     &NoTables},
    {"slot-tables-unreadable", Severity::kError,
     "The SMBIOS tables cannot be read, so no slot is published.",
     "Run as root; if the tables are damaged, look for a firmware update.", &UnreadableTables},
    {"slot-records-missing", Severity::kNote,
     "The SMBIOS tables contain no slot records, so no slot is published.",
     "A firmware update or, for a virtual machine, SMBIOS type 9 records can add them.",
     &NoRecords},
    {"slot-addresses-missing", Severity::kNote,
     "The firmware's slot records have no addresses, so the functions in the slots are unknown.",
     "Look for a firmware update to SMBIOS 2.6 or later.", &NoAddresses},
    {"slot-unpublished", Severity::kError, "The firmware describes more slots than are published.",
     "See the messages of \"pciinfo instances QZMSG_SystemSlot\".", &UnpublishedSlots},
    {"slot-out-of-place", Severity::kError,
     "A slot before these is missing; functions of one slot may be shown in the next.",
     "See the messages of \"pciinfo instances QZMSG_SystemSlot\".", &OutOfPlace},
    {"slot-number-drift", Severity::kError,
     "These slot records are too long, so their peer groups are not published but still counted: "
     "functions of later slots are shown in the wrong slots.",
     "Do not trust the functions shown in slots after these; look for a firmware update.",
     &WithDriftingNumber},
    {"slot-record-short", Severity::kWarning,
     "The first slot record has an address but these do not; their address is read from beyond the "
     "end of the record.",
     "Do not trust the functions shown in these slots; look for a firmware update.",
     &WithShortRecord},
    {"slot-address-missing", Severity::kWarning,
     "These slots are in use, but the firmware gives a placeholder instead of an address, so "
     "the functions in them are unknown.",
     "Find the card by its position on the board, or look for a firmware update.",
     &InUseWithPlaceholder},
    {"slot-address-placeholder", Severity::kNote,
     "These slots are not in use, and the firmware gives a placeholder instead of an address.",
     "This is normal; a card that is inserted later may not be assigned to its slot.",
     &UnusedWithPlaceholder},
    {"slot-address-dangling", Severity::kWarning,
     "These slots are in use, but the kernel knows no function at their addresses.",
     "The firmware's numbering may differ from the kernel's; look for a firmware update.",
     &InUseWithoutFunction},
    {"slot-on-bus-zero", Severity::kNote,
     "These slots are in use on bus 0; no functions are assigned to slots on bus 0.",
     "Find the function by the slot's address.", &OnBusZero},
    {"slot-in-other-domain", Severity::kNote,
     "These slots are in another PCI domain; functions are assigned to them by bus number alone.",
     "Compare the functions shown in them with /sys/bus/pci/devices.", &InOtherDomain},
    {"slot-neighbour", Severity::kNote,
     "These functions are shown in a slot because they are on its bus, but the slot's address "
     "names another device.",
     "Compare the device numbers before you assume that the function is the slot's card.",
     &OnSlotBusButOtherDevice},
    {"slot-number-shared", Severity::kWarning,
     "These functions are assigned to a slot by a number that several slots share; the first of "
     "those slots is published.",
     "Find the card by its position on the board.", &ByAmbiguousNumber},
    {"slot-id-shared", Severity::kNote, "Several slots have the same slot ID.",
     "Identify slots by \"Tag\", not by \"Number\".", &WithSharedId},
    {"slot-designation-shared", Severity::kNote, "Several slots have the same designation.",
     "Identify slots by \"Tag\", not by \"SlotDesignation\".", &WithSharedDesignation},
};

}  // namespace

const std::vector<ClassCheck>& SlotClassChecks() { return kSlotClassChecks; }

}  // namespace pciinfo
