// SPDX-License-Identifier: Apache-2.0
#include "host/capture/redact_smbios.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "runtime/smbios_table.h"

namespace pciinfo {
namespace {

using Bytes = std::span<std::uint8_t>;

constexpr int kOemStrings = 11;
constexpr int kInactive = 126;
constexpr int kFirstOemType = 128;
constexpr std::size_t kHeaderLength = 4;
/// Firmware of SMBIOS 2.5 describes slots in OEM strings that begin so.
constexpr std::string_view kSlotMarker = "$T9";

/// A byte that holds the number of a string to blank (DSP0134).
struct StringField {
  int type;
  std::size_t offset;
};

constexpr std::array<StringField, 12> kStringFields = {{
    {1, 0x07},   // 7.2 System Information: Serial Number
    {2, 0x07},   // 7.3 Baseboard: Serial Number
    {2, 0x08},   // 7.3 Baseboard: Asset Tag
    {3, 0x07},   // 7.4 System Enclosure: Serial Number
    {3, 0x08},   // 7.4 System Enclosure: Asset Tag Number
    {4, 0x20},   // 7.5 Processor: Serial Number
    {4, 0x21},   // 7.5 Processor: Asset Tag
    {17, 0x18},  // 7.18 Memory Device: Serial Number
    {17, 0x19},  // 7.18 Memory Device: Asset Tag
    {22, 0x07},  // 7.23 Portable Battery: Serial Number
    {39, 0x08},  // 7.40 System Power Supply: Serial Number
    {39, 0x09},  // 7.40 System Power Supply: Asset Tag Number
}};

/// Bytes to clear that are not text (DSP0134).
struct NumberField {
  int type;
  std::size_t offset;
  std::size_t length;
};

constexpr std::array<NumberField, 3> kNumberFields = {{
    {1, 0x08, 16},     // 7.2 System Information: UUID
    {22, 0x10, 2},     // 7.23 Portable Battery: SBDS Serial Number
    {42, 0x04, 0xFF},  // 7.43 Management Controller Host Interface: all, it may hold UUIDs
}};

Bytes FormattedArea(Bytes structure) { return structure.first(structure[1]); }

/// Calls `use` with the number and the characters of every string of a structure (6.1.3).
template <class Use>
void ForEachString(Bytes structure, const Use& use) {
  Bytes rest = structure.subspan(structure[1]);
  for (std::size_t number = 1; !rest.empty() && rest[0] != 0; ++number) {
    const auto length =
        static_cast<std::size_t>(std::find(rest.begin(), rest.end(), 0) - rest.begin());
    use(number, rest.first(length));
    rest = rest.subspan(std::min(length + 1, rest.size()));
  }
}

void Blank(Bytes text) { std::fill(text.begin(), text.end(), std::uint8_t{'X'}); }

void BlankString(Bytes structure, std::size_t wanted) {
  ForEachString(structure, [wanted](std::size_t number, Bytes text) {
    if (number == wanted) Blank(text);
  });
}

void ClearNumber(Bytes structure, std::size_t offset, std::size_t length) {
  const Bytes area = FormattedArea(structure);
  const std::size_t begin = std::min(offset, area.size());
  const Bytes field = area.subspan(begin, std::min(length, area.size() - begin));
  std::fill(field.begin(), field.end(), std::uint8_t{0});
}

void RedactFields(Bytes structure) {
  for (const StringField& field : kStringFields) {
    if (field.type != structure[0] || field.offset >= structure[1]) continue;
    BlankString(structure, structure[field.offset]);
  }
  for (const NumberField& field : kNumberFields) {
    if (field.type == structure[0]) ClearNumber(structure, field.offset, field.length);
  }
}

/// Blanks OEM strings, which may contain anything, except those that describe slots.
void RedactOemStrings(Bytes structure) {
  ForEachString(structure, [](std::size_t, Bytes text) {
    const bool describesSlot = text.size() >= kSlotMarker.size() &&
                               std::equal(kSlotMarker.begin(), kSlotMarker.end(), text.begin(),
                                          [](char marker, std::uint8_t byte) {
                                            return static_cast<std::uint8_t>(marker) == byte;
                                          });
    if (!describesSlot) Blank(text);
  });
}

/// Blanks everything, because only the vendor knows what the structure contains.
void RedactWhole(Bytes structure) {
  ClearNumber(structure, kHeaderLength, structure[1]);
  ForEachString(structure, [](std::size_t, Bytes text) { Blank(text); });
}

void RedactStructure(Bytes structure) {
  const int type = structure[0];
  if (type == kOemStrings) return RedactOemStrings(structure);
  if (type == kInactive || type >= kFirstOemType) return RedactWhole(structure);
  RedactFields(structure);
}

}  // namespace

void RedactSmBios(const std::string& entryPoint, std::string& table) {
  const std::vector<std::uint8_t> entryBytes(entryPoint.begin(), entryPoint.end());
  vtq::SmBiosTable tables{vtq::ParseSmBiosEntryPoint(entryBytes), {table.begin(), table.end()}};
  const Bytes all = tables.bytes;
  vtq::SmBiosWalk walk(tables);
  std::size_t end = 0;
  while (const auto structure = walk.Next()) {
    const auto begin = static_cast<std::size_t>(structure->data() - all.data());
    end = begin + structure->size();
    RedactStructure(all.subspan(begin, structure->size()));
  }
  std::fill(all.begin() + static_cast<std::ptrdiff_t>(end), all.end(), std::uint8_t{0});
  table.assign(all.begin(), all.end());
}

}  // namespace pciinfo
