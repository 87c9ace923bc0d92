// SPDX-License-Identifier: Apache-2.0

// Compares the slot collector with a model of every byte that it may read, for any structures. An
// input is flags and an SMBIOS table.
#include <optional>
#include <string>
#include <vector>

#include "fuzz/fuzz.h"
#include "fuzz/mutate.h"
#include "fuzz/slot_model.h"
#include "fuzz/smbios_mutator.h"
#include "plugin/structure_reader.h"
#include "slots/slot_info.h"
#include "slots/type9.h"

namespace {

using fuzz::PlainMemory;
using fuzz::Require;
using NQZMVTQ20::TCIMValue;

constexpr std::uint8_t kAllTypesBit = 1;
constexpr int kType = 9;
constexpr std::size_t kMostStructures = 3;  // each is up to nine slots

std::string PlainString(int number, const PlainMemory& slot) {
  if (number == 0) return "";
  int place = slot.SignedAt(1);
  if (slot.At(place) == 0) return "(null string)";
  for (int i = 1; i < number; ++i) place = slot.Behind(place);
  return slot.TextAt(place);
}

TCIMValue Words(const std::vector<unsigned>& numbers) {
  TCIMValue::TArray values;
  for (const unsigned number : numbers) values.emplace_back(static_cast<unsigned short>(number));
  const auto count = static_cast<std::uint32_t>(values.size());
  return {TCIMValue::TCIMType(TCIMValue::TCIMType::kUint16), count, values};
}

TCIMValue Word(unsigned number) { return TCIMValue(static_cast<unsigned short>(number)); }

void AddUsage(unsigned usage, TPropertyMap& slot) {
  const char* text = usage == 1   ? "Other"
                     : usage == 3 ? "Slot is available"
                     : usage == 4 ? "Slot is in use"
                                  : "Unknown";
  const unsigned status = usage == 1 ? 1 : usage == 3 || usage == 4 ? 2 : 0;
  slot["CurrentUsage"] = Word(usage);
  slot["OperationalStatus"] = Words({status});
  slot["StatusDescriptions"] =
      TCIMValue(TCIMValue::TCIMType(TCIMValue::TCIMType::kString), 1, {TCIMValue(text)});
}

void AddCharacteristics(unsigned first, unsigned second, TPropertyMap& slot) {
  const bool fiveVolt = first & 2;
  const bool threeVolt = first & 4;
  slot["VccMixedVoltageSupport"] = fiveVolt && threeVolt ? Words({3, 2})
                                   : fiveVolt            ? Words({3})
                                   : threeVolt           ? Words({2})
                                                         : Words({0});
  slot["Shared"] = TCIMValue((first & 8) != 0);
  slot["PMESignal"] = TCIMValue((second & 1) != 0);
  slot["SupportsHotPlug"] = TCIMValue((second & 2) != 0);
}

void SetTag(int number, const std::string& designation, TPropertyMap& slot) {
  const std::string tag = "Tag " + std::to_string(number);
  slot["Tag"] = TCIMValue(tag);
  const auto info = slot.find("SlotAllInfo");
  if (info == slot.end()) return;
  info->second = TCIMValue(designation == tag ? tag : designation + "," + tag);
}

/// A slot without its tag.
TPropertyMap PlainSlot(const PlainMemory& memory, const std::optional<std::string>& designation) {
  TPropertyMap slot;
  slot["Number"] = Word(memory.WordAt(9));
  slot["CreationClassName"] = TCIMValue("QZMSG_SystemSlot");
  slot["Description"] = TCIMValue("System Slot");
  slot["SlotLength"] = TCIMValue(static_cast<unsigned char>(memory.At(8)));
  slot["ConnectorType"] = Words({memory.At(5)});
  slot["MaxDataWidth"] = Word(memory.At(6));
  AddUsage(memory.At(7), slot);
  AddCharacteristics(memory.At(0x0B), memory.At(0x0C), slot);
  if (!designation) return slot;
  slot["SlotDesignation"] = TCIMValue(*designation);
  slot["SlotAllInfo"] = TCIMValue();
  return slot;
}

int PlainPeers(const PlainMemory& slot) {
  const int peers = slot.SignedAt(0x12);
  return peers >= 1 && peers < 9 && slot.SignedAt(1) > 16 ? peers : 0;
}

/// The slots of one structure differ in their tags only, and to make a slot takes most of the time.
/// So the model makes one slot for each structure, and gets the tag of each slot in turn.
void CheckSlots(const std::vector<TPropertyMap>& slots, const std::vector<PlainMemory>& fetched) {
  std::size_t count = 0;
  for (const PlainMemory& memory : fetched) {
    if (memory.At(0) != kType) continue;
    const auto number = static_cast<int>(memory.At(4));
    std::optional<std::string> designation;
    if (number != 0) designation = PlainString(number, memory);
    TPropertyMap slot = PlainSlot(memory, designation);
    for (int i = 0; i <= PlainPeers(memory); ++i) {
      Require(count < slots.size(), "each record and peer gives a slot");
      SetTag(static_cast<int>(count) + 1, designation.value_or(""), slot);
      Require(slots[count] == slot, "slots have the values of their bytes");
      ++count;
    }
  }
  Require(count == slots.size(), "nothing else gives a slot");
}

std::string_view WholeBuffer(StructureReader& reader) {
  constexpr auto kSize =
      StructureReader::kGuardBefore + StructureReader::kCapacity + StructureReader::kGuardAfter;
  const auto* start = reader.Get() - StructureReader::kGuardBefore;
  return {reinterpret_cast<const char*>(start), kSize};
}

std::string PlainBuffer(const PlainMemory& memory) {
  std::string buffer(StructureReader::kGuardBefore, '\0');
  buffer += memory.Bytes();
  buffer.resize(StructureReader::kGuardBefore + StructureReader::kCapacity +
                StructureReader::kGuardAfter);
  return buffer;
}

// Checks every byte of the buffer, and the strings of some numbers up to the largest.
void CheckBuffer(const std::vector<PlainMemory>& fetched) {
  void* handle = nullptr;
  NQZMVTQ20::smBiosLoad(nullptr, &handle);
  StructureReader reader(handle);
  auto status = reader.First(kType);
  for (const PlainMemory& memory : fetched) {
    Require(status == 0, "a structure that fits is fetched");
    Require(WholeBuffer(reader) == PlainBuffer(memory), "all bytes around a structure are zero");
    for (const int number : {0, 1, 2, 3, 127, 128, 255}) {
      Require(PlainString(number, memory) == FindSlotString(number, reader.Get()),
              "a string is the bytes at its place");
    }
    status = reader.Next();
  }
  NQZMVTQ20::smBiosClose(&handle);
}

}  // namespace

void fuzz::CheckInput(std::string_view input) {
  Pieces pieces(input);
  const bool thenAll = pieces.Byte() & kAllTypesBit;
  const std::vector<std::string> structures = ServeStructures(pieces.Rest(), kMostStructures);
  Fake().smBios.deliversAllTypes = thenAll;
  const std::vector<PlainMemory> fetched = FetchedOf(structures, kType, thenAll);
  TSlotInfo collector(nullptr);
  CheckSlots(collector.GetSlotInfo(), fetched);
  CheckBuffer(fetched);
  Require(Fake().smBios.openHandles == 0, "every handle is closed");
  Fake() = {};  // what stays allocated looks like a leak of this input
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* bytes, std::size_t size,
                                               std::size_t most, unsigned seed) {
  constexpr std::size_t kTable = 1;
  return fuzz::MutateTable(bytes, size, most, seed, kTable);
}
