// What is doubtful about the published slots, and about which functions sit in them.

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <tuple>

#include "host/check/checks.h"
#include "host/console/text.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TVTQStatusCode;

constexpr unsigned kInUse = 4;  // SMBIOS 7.10.3
constexpr unsigned kLongest = 127;  // for readers that take a length for a signed number
constexpr unsigned kNoSegment = 0xFFFF;
constexpr unsigned kNoSegmentByte = 0xFF;

/// A slot record by the running number that functions are tied to it with.
struct NumberedSlot {
  unsigned number;
  const SlotRecord* record;
};

unsigned CountPeers(const SlotRecord& record) {
  const bool counted = record.length >= kLengthWithAddress && record.peerCount <= kMostPeers;
  return counted ? record.peerCount : 0;
}

/// How many slots are published for a record.
unsigned CountPublished(const SlotRecord& record) {
  return record.length > kLongest ? 1 : 1 + CountPeers(record);
}

std::vector<NumberedSlot> Numbered(const CheckFacts& facts) {
  std::vector<NumberedSlot> slots;
  unsigned number = 1;
  for (const SlotRecord& record : facts.slotRecords.records) {
    slots.push_back({number, &record});
    number += 1 + CountPeers(record);
  }
  return slots;
}

std::string TagOf(unsigned number) { return fmt::format("Tag {}", number); }

std::string PathOfTag(const CheckFacts& facts, const std::string& tag) {
  for (const Slot& slot : facts.slots.slots) {
    if (slot.tag == tag) return slot.path;
  }
  return "";
}

Doubt DoubtOf(const CheckFacts& facts, unsigned number, std::string detail) {
  const std::string tag = TagOf(number);
  return {tag, PathOfTag(facts, tag), std::move(detail)};
}

std::string AddressDetail(const SlotRecord& record) {
  return fmt::format("{:04x}:{}", record.segment, FormatAddress(record.address));
}

bool HasAddress(const SlotRecord& record) { return record.length >= kLengthWithAddress; }

bool IsKnown(const CheckFacts& facts, const PciAddress& address) {
  const auto& list = ListOf(facts);
  const bool isListed = std::any_of(list.begin(), list.end(), [&](const ListedFunction& line) {
    return line.address == address;
  });
  return isListed || facts.functions.count({0, address}) != 0;
}

/// Whether an address is one of those that firmware writes for none. Bus ff may be real.
bool IsPlaceholder(const CheckFacts& facts, const SlotRecord& record) {
  const PciAddress& at = record.address;
  if (record.segment == kNoSegment || record.segment == kNoSegmentByte) return true;
  if (at == PciAddress{0, 0, 0}) return true;
  const bool isLast = at == PciAddress{0xFF, 0x1F, 7} || at == PciAddress{0xFF, 0, 0};
  return isLast && !IsKnown(facts, at);
}

bool KnowsFunctions(const CheckFacts& facts) {
  return !facts.functions.empty() || (facts.list && !facts.list->empty());
}

bool IsKnownInSegment(const CheckFacts& facts, const SlotRecord& record) {
  if (record.segment == 0) return IsKnown(facts, record.address);
  return facts.functions.count({record.segment, record.address}) != 0;
}

/// The slots with an address of their own for which `fits` holds.
template <class Fits>
std::vector<Doubt> SlotsThat(const CheckFacts& facts, const Fits& fits) {
  std::vector<Doubt> doubts;
  for (const NumberedSlot& slot : Numbered(facts)) {
    if (!HasAddress(*slot.record) || !fits(*slot.record)) continue;
    doubts.push_back(DoubtOf(facts, slot.number, AddressDetail(*slot.record)));
  }
  return doubts;
}

std::vector<Doubt> InUseWithPlaceholder(const CheckFacts& facts) {
  return SlotsThat(facts, [&](const SlotRecord& record) {
    return record.usage == kInUse && IsPlaceholder(facts, record);
  });
}

std::vector<Doubt> UnusedWithPlaceholder(const CheckFacts& facts) {
  return SlotsThat(facts, [&](const SlotRecord& record) {
    return record.usage != kInUse && IsPlaceholder(facts, record);
  });
}

bool IsPlacedInUse(const CheckFacts& facts, const SlotRecord& record) {
  return record.usage == kInUse && !IsPlaceholder(facts, record);
}

std::vector<Doubt> InUseWithoutFunction(const CheckFacts& facts) {
  if (!KnowsFunctions(facts)) return {};
  return SlotsThat(facts, [&](const SlotRecord& record) {
    return IsPlacedInUse(facts, record) && !IsKnownInSegment(facts, record);
  });
}

std::vector<Doubt> OnBusZero(const CheckFacts& facts) {
  return SlotsThat(facts, [&](const SlotRecord& record) {
    return IsPlacedInUse(facts, record) && record.address.bus == 0;
  });
}

std::vector<Doubt> InOtherDomain(const CheckFacts& facts) {
  return SlotsThat(facts, [&](const SlotRecord& record) {
    return IsPlacedInUse(facts, record) && record.segment != 0;
  });
}

std::vector<Doubt> WithShortRecord(const CheckFacts& facts) {
  if (!facts.slotRecords.tellAddresses) return {};
  std::vector<Doubt> doubts;
  for (const NumberedSlot& slot : Numbered(facts)) {
    if (HasAddress(*slot.record)) continue;
    doubts.push_back(
        DoubtOf(facts, slot.number, fmt::format("record of {} bytes", slot.record->length)));
  }
  return doubts;
}

std::vector<Doubt> WithDriftingNumber(const CheckFacts& facts) {
  std::vector<Doubt> doubts;
  for (const NumberedSlot& slot : Numbered(facts)) {
    if (CountPublished(*slot.record) == 1 + CountPeers(*slot.record)) continue;
    doubts.push_back(DoubtOf(facts, slot.number,
                             fmt::format("record of {} bytes with {} peer groups",
                                         slot.record->length, slot.record->peerCount)));
  }
  return doubts;
}

/// Functions are tied to the slot at a place, not to the one of a tag: where one is missing, those
/// behind it have moved up.
std::vector<Doubt> OutOfPlace(const CheckFacts& facts) {
  std::vector<Doubt> doubts;
  unsigned place = 0;
  for (const Slot& slot : facts.slots.slots) {
    ++place;
    if (slot.tag == TagOf(place)) continue;
    doubts.push_back({slot.tag, slot.path, fmt::format("in place {}", place)});
  }
  return doubts;
}

std::vector<Doubt> UnpublishedSlots(const CheckFacts& facts) {
  std::size_t expected = 0;
  for (const SlotRecord& record : facts.slotRecords.records) expected += CountPublished(record);
  const std::size_t published = facts.slots.slots.size();
  if (published >= expected) return {};
  return {{"slots", "", fmt::format("{} of {} are published", published, expected)}};
}

/// The record whose running number a slot has; null for one of its peer groups.
const SlotRecord* RecordOf(const std::vector<NumberedSlot>& numbered, const Slot& slot) {
  for (const NumberedSlot& candidate : numbered) {
    if (TagOf(candidate.number) == slot.tag) return candidate.record;
  }
  return nullptr;
}

/// A slot's address is matched by its bus alone.
std::vector<Doubt> BesideTheSlot(const CheckFacts& facts) {
  std::vector<Doubt> doubts;
  const std::vector<NumberedSlot> numbered = Numbered(facts);
  for (const Slot& slot : facts.slots.slots) {
    const SlotRecord* record = RecordOf(numbered, slot);
    if (record == nullptr || !HasAddress(*record)) continue;
    for (const PciFunction& function : slot.functions) {
      if (!function.address || function.address->bus != record->address.bus) continue;
      if (function.address->device == record->address.device) continue;
      doubts.push_back({AddressText(function), function.path,
                        slot.tag + " is at " + FormatAddress(record->address)});
    }
  }
  return doubts;
}

/// Slots that share what `keyOf` gives; an empty key is no key.
template <class KeyOf>
std::vector<Doubt> Sharing(const CheckFacts& facts, const KeyOf& keyOf) {
  std::map<std::string, unsigned> counts;
  for (const Slot& slot : facts.slots.slots) ++counts[keyOf(slot)];
  std::vector<Doubt> doubts;
  for (const Slot& slot : facts.slots.slots) {
    const std::string key = keyOf(slot);
    if (!key.empty() && counts[key] > 1) doubts.push_back({slot.tag, slot.path, key});
  }
  return doubts;
}

std::vector<Doubt> WithSharedId(const CheckFacts& facts) {
  return Sharing(facts, [](const Slot& slot) {
    return slot.id ? fmt::format("slot ID {}", *slot.id) : std::string();
  });
}

std::vector<Doubt> WithSharedDesignation(const CheckFacts& facts) {
  return Sharing(
      facts, [](const Slot& slot) { return TrimEnd(Printable(slot.designation.value_or(""))); });
}

/// Where functions are tied to slots by the slot ID, the first slot with that number gets them.
std::vector<Doubt> ByAmbiguousNumber(const CheckFacts& facts) {
  if (facts.slotRecords.tellAddresses) return {};
  std::vector<Doubt> doubts;
  for (const PublishedFunction& published : facts.published) {
    const unsigned number = published.slotNumber.value_or(0);
    const auto count =
        std::count_if(facts.slots.slots.begin(), facts.slots.slots.end(),
                      [&](const Slot& slot) { return slot.id && (*slot.id & 0xFFU) == number; });
    if (number == 0 || count < 2) continue;
    doubts.push_back({AddressText(published.function), published.function.path,
                      fmt::format("{} slots have the number {}", count, number)});
  }
  return doubts;
}

bool AreTablesMissing(const CheckFacts& facts) {
  return facts.slotRecords.opened == TVTQStatusCode::kNotFound;
}

std::vector<Doubt> NoTables(const CheckFacts& facts) {
  if (!AreTablesMissing(facts)) return {};
  return {{"/sys/firmware/dmi/tables", "",
           facts.isCapture ? "not in this capture" : "not on this machine"}};
}

std::vector<Doubt> UnreadableTables(const CheckFacts& facts) {
  const auto status = facts.slotRecords.opened;
  if (status == TVTQStatusCode::kSuccess || AreTablesMissing(facts)) return {};
  const char* why = status == TVTQStatusCode::kAccessDenied  ? "this user may not read them"
                    : status == TVTQStatusCode::kCorruptData ? "they are damaged"
                                                             : "reading them failed";
  return {{"/sys/firmware/dmi/tables", "", why}};
}

std::vector<Doubt> NoRecords(const CheckFacts& facts) {
  const SlotRecords& slots = facts.slotRecords;
  if (slots.opened != TVTQStatusCode::kSuccess || !slots.records.empty()) return {};
  return {{"/sys/firmware/dmi/tables", "", ""}};
}

std::vector<Doubt> NoAddresses(const CheckFacts& facts) {
  if (facts.slotRecords.records.empty() || facts.slotRecords.tellAddresses) return {};
  return {{"/sys/firmware/dmi/tables", "", ""}};
}

const std::vector<Check> kSlotChecks = {
    {"slot-tables-missing", Severity::kNote, "There are no SMBIOS tables, so no slot is published.",
     "Firmware gives them to physical machines; a capture must be made as root to hold them.",
     &NoTables},
    {"slot-tables-unreadable", Severity::kError,
     "The SMBIOS tables cannot be read, so no slot is published.",
     "Run as root; where the tables are damaged, look for a firmware update.", &UnreadableTables},
    {"slot-records-missing", Severity::kNote,
     "The SMBIOS tables hold no slot records, so no slot is published.",
     "A firmware update or, for a virtual machine, SMBIOS type 9 records can add them.",
     &NoRecords},
    {"slot-addresses-missing", Severity::kNote,
     "The firmware's slot records have no addresses, so it is not known what sits in the slots.",
     "Look for a firmware update to SMBIOS 2.6 or later.", &NoAddresses},
    {"slot-unpublished", Severity::kError, "The firmware describes more slots than are published.",
     "See the messages of \"pciinfo instances QZMSG_SystemSlot\".", &UnpublishedSlots},
    {"slot-out-of-place", Severity::kError,
     "A slot before these ones is missing; functions of a slot may be shown in the next one.",
     "See the messages of \"pciinfo instances QZMSG_SystemSlot\".", &OutOfPlace},
    {"slot-number-drift", Severity::kError,
     "These slot records are too long for their peer groups to be published, and the groups are "
     "counted all the same: functions of later slots are shown in wrong ones.",
     "Do not rely on which function sits in a slot behind these; look for a firmware update.",
     &WithDriftingNumber},
    {"slot-record-short", Severity::kWarning,
     "These slot records have no address, though the first one has: an address is read behind "
     "their ends.",
     "Do not rely on which function sits in these slots; look for a firmware update.",
     &WithShortRecord},
    {"slot-address-missing", Severity::kWarning,
     "These slots are in use, and the firmware gives a placeholder for the address: it is not "
     "known what sits in them.",
     "Find the card by its place on the board, or look for a firmware update.",
     &InUseWithPlaceholder},
    {"slot-address-placeholder", Severity::kNote,
     "These slots are not in use, and the firmware gives a placeholder for the address.",
     "Nothing is wrong; a card that is put in may not be tied to its slot.",
     &UnusedWithPlaceholder},
    {"slot-address-dangling", Severity::kWarning,
     "These slots are in use, and their addresses name no function that the kernel knows.",
     "The firmware's numbering may differ from the kernel's; look for a firmware update.",
     &InUseWithoutFunction},
    {"slot-on-bus-zero", Severity::kWarning,
     "These slots are in use on bus 0, whose slots are tied to no function.",
     "Take the function from the address.", &OnBusZero},
    {"slot-in-other-domain", Severity::kWarning,
     "These slots are in another PCI domain; functions are tied to them by the bus number alone.",
     "Compare the functions shown in them with /sys/bus/pci/devices.", &InOtherDomain},
    {"slot-neighbour", Severity::kWarning,
     "These functions are shown in a slot because they are on its bus; the slot's address is "
     "that of another device.",
     "Check the device number before you take the function for the slot's card.", &BesideTheSlot},
    {"slot-number-shared", Severity::kWarning,
     "These functions are tied to a slot by a number that several slots have; the first of them "
     "is published.",
     "Find the card by its place on the board.", &ByAmbiguousNumber},
    {"slot-id-shared", Severity::kNote, "Several slots have the same slot ID.",
     "Tell slots apart by \"Tag\", not by \"Number\".", &WithSharedId},
    {"slot-designation-shared", Severity::kNote, "Several slots have the same designation.",
     "Tell slots apart by \"Tag\", not by \"SlotDesignation\".", &WithSharedDesignation},
};

}  // namespace

const std::vector<Check>& SlotChecks() { return kSlotChecks; }

}  // namespace pciinfo
