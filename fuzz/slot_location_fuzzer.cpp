// SPDX-License-Identifier: Apache-2.0

// Locations of slots, from System Slots structures or from OEM strings. An input is a version (two
// bytes), a source, and an SMBIOS table.
#include "fuzz/fuzz.h"
#include "fuzz/models.h"
#include "fuzz/mutate.h"
#include "fuzz/slot_model.h"
#include "fuzz/smbios_mutator.h"
#include "pci/dev_info.h"
#include "pci/process_state.h"

namespace {

using fuzz::FetchedOf;
using fuzz::PlainMemory;
using fuzz::Require;

using Structures = std::vector<std::string>;

constexpr std::size_t kMostStructures = 64;

// Slot locations, and the next tag.
struct Found {
  std::vector<SlotLocation> locations;
  unsigned nextTag = 1;

  void Add(SlotLocation location) {
    location.tag = static_cast<std::uint16_t>(nextTag++);
    if (location.bus != 0) locations.push_back(location);
  }
};

void AddSlot(const PlainMemory& slot, Found& found) {
  SlotLocation location;
  location.slotId = static_cast<std::uint16_t>(slot.WordAt(0x09));
  location.segmentGroup = static_cast<std::uint16_t>(slot.WordAt(0x0D));
  location.bus = static_cast<std::uint8_t>(slot.At(0x0F));
  location.device = static_cast<std::uint8_t>(slot.At(0x10) / 8);
  location.function = static_cast<std::uint8_t>(slot.At(0x10) % 8);
  location.currentUsage = static_cast<std::uint8_t>(slot.At(0x07));
  found.Add(location);
  const unsigned peers = slot.At(1) > 16 && slot.At(0x12) <= 8 ? slot.At(0x12) : 0;
  for (unsigned k = 0; k < peers; ++k) {
    const int place = 0x13 + 5 * static_cast<int>(k);
    location.segmentGroup = static_cast<std::uint16_t>(slot.WordAt(place));
    location.bus = static_cast<std::uint8_t>(slot.At(place + 2));
    found.Add(location);
  }
}

std::string FirstText(const PlainMemory& structure) {
  return structure.TextAt(static_cast<int>(structure.At(1)));
}

bool IsSlotText(const std::string& text) { return text.starts_with("$T9"); }

unsigned Marked(const std::string& text, const std::string& marker, std::size_t digits) {
  const std::size_t place = text.find(marker);
  if (place == std::string::npos) return 0;
  return fuzz::PlainHex<unsigned short>(text.substr(place + marker.size(), digits));
}

void AddText(const std::string& text, Found& found) {
  if (!IsSlotText(text)) return;
  SlotLocation location;
  location.slotId = static_cast<std::uint16_t>(Marked(text, "SID:0x", 4) % 256);
  location.segmentGroup = static_cast<std::uint16_t>(Marked(text, "SegGrp:0x", 4) % 256);
  location.bus = static_cast<std::uint8_t>(Marked(text, "B:0x", 2) % 256);
  location.device = static_cast<std::uint8_t>(Marked(text, "D:0x", 2) % 256);
  location.function = static_cast<std::uint8_t>(Marked(text, "F:0x", 2) % 256);
  found.Add(location);
}

int PlainRetrievalType(int major, int minor, const Structures& structures) {
  if (major == 2 && minor == 5) {
    for (const PlainMemory& texts : FetchedOf(structures, 11)) {
      if (IsSlotText(FirstText(texts))) return 1;
    }
    return 0;
  }
  if (major < 2 || (major == 2 && minor < 5)) return 0;
  const std::vector<PlainMemory> slots = FetchedOf(structures, 9);
  return !slots.empty() && slots[0].At(1) > 16 ? 2 : 0;
}

Found PlainLocations(bool fromSlots, const std::vector<PlainMemory>& fetched) {
  Found found;
  for (const PlainMemory& structure : fetched) {
    if (fromSlots) {
      AddSlot(structure, found);
    } else {
      AddText(FirstText(structure), found);
    }
  }
  return found;
}

bool AreEqual(const SlotLocation& left, const SlotLocation& right) {
  return left.tag == right.tag && left.slotId == right.slotId &&
         left.segmentGroup == right.segmentGroup && left.bus == right.bus &&
         left.device == right.device && left.function == right.function &&
         left.currentUsage == right.currentUsage;
}

void CheckLocations(TPciDevInfo& collector, bool fromSlots, const Structures& structures) {
  const std::vector<PlainMemory> fetched = FetchedOf(structures, fromSlots ? 9 : 11);
  processState.slotIDRetrievalType = fromSlots ? 2 : 1;
  std::vector<SlotLocation> locations;
  const int status = collector.readPCISlotLocation(&locations);
  Require(status == (fetched.empty() ? -1 : 0), "it fails when there is no structure");
  const Found found = PlainLocations(fromSlots, fetched);
  Require(std::equal(locations.begin(), locations.end(), found.locations.begin(),
                     found.locations.end(), AreEqual),
          "locations are those in the structures");
  if (status == 0) {
    Require(tagCounter == static_cast<std::uint16_t>(found.nextTag), "every slot takes a number");
  }
}

}  // namespace

void fuzz::CheckInput(std::string_view input) {
  Pieces pieces(input);
  const int major = pieces.Byte();
  const int minor = pieces.Byte();
  const bool fromSlots = pieces.Byte() % 2 == 0;
  const Structures structures = ServeStructures(pieces.Rest(), kMostStructures);
  Fake().smBios.version = std::to_string(major) + "." + std::to_string(minor);
  TPciDevInfo collector(nullptr);
  Require(collector.GetSlotIDRetrievalType() == PlainRetrievalType(major, minor, structures),
          "the source depends on the version and the structures");
  CheckLocations(collector, fromSlots, structures);
  Require(Fake().smBios.openHandles == 0, "every handle is closed");
  Fake() = {};  // what stays allocated looks like a leak of this input
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* bytes, std::size_t size,
                                               std::size_t most, unsigned seed) {
  constexpr std::size_t kTable = 3;
  return fuzz::MutateTable(bytes, size, most, seed, kTable);
}
