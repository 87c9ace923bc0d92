// SPDX-License-Identifier: Apache-2.0
#include "topology/firmware_records.h"

#include <algorithm>

namespace topology {
namespace {

constexpr std::size_t kPeerSize = 5;
constexpr std::size_t kHandleSize = 2;

/// Reads the fields of one structure. A field behind the end of its formatted area is absent.
class Fields {
 public:
  explicit Fields(Structure structure) : structure_(structure) {
    length_ = structure.size() < 4 ? 0 : std::min<std::size_t>(structure[1], structure.size());
  }

  bool Has(std::size_t offset, std::size_t size) const { return offset + size <= length_; }
  std::uint8_t Byte(std::size_t offset) const { return Has(offset, 1) ? structure_[offset] : 0; }
  std::uint16_t Word(std::size_t offset) const {
    if (!Has(offset, 2)) return 0;
    return static_cast<std::uint16_t>(structure_[offset] | structure_[offset + 1] << 8);
  }

  /// The string that the byte at `offset` numbers, without blanks around it.
  std::string Text(std::size_t offset) const;

  /// A segment word, a bus byte and a device and function byte.
  Address AddressAt(std::size_t segment, std::size_t bus) const {
    const std::uint8_t deviceAndFunction = Byte(bus + 1);
    return {Word(segment), Byte(bus), static_cast<std::uint8_t>(deviceAndFunction >> 3),
            static_cast<std::uint8_t>(deviceAndFunction & 7)};
  }

 private:
  Structure structure_;
  std::size_t length_;
};

std::string Trimmed(std::string text) {
  constexpr const char* kBlanks = " \t\r\n";
  const std::size_t last = text.find_last_not_of(kBlanks);
  if (last == std::string::npos) return "";
  text.erase(last + 1);
  text.erase(0, text.find_first_not_of(kBlanks));
  return text;
}

std::string Fields::Text(std::size_t offset) const {
  auto at = structure_.begin() + static_cast<std::ptrdiff_t>(length_);
  for (unsigned number = Byte(offset); number > 0 && at != structure_.end(); --number) {
    const auto end = std::find(at, structure_.end(), 0);
    if (end == at) break;  // the end of the strings
    if (number == 1) return Trimmed(std::string(at, end));
    if (end == structure_.end()) break;
    at = end + 1;
  }
  return "";
}

}  // namespace

std::optional<SlotRecord> DecodeSlotRecord(Structure structure) {
  const Fields fields(structure);
  if (!fields.Has(0x04, 1)) return std::nullopt;
  SlotRecord record;
  record.handle = fields.Word(0x02);
  record.designation = fields.Text(0x04);
  record.type = fields.Byte(0x05);
  record.width = fields.Byte(0x06);
  record.usage = fields.Byte(0x07);
  record.length = fields.Byte(0x08);
  record.id = fields.Word(0x09);
  record.hotPlug = (fields.Byte(0x0C) & 0x02) != 0;
  if (fields.Has(0x0D, 4)) record.address = fields.AddressAt(0x0D, 0x0F);
  for (std::size_t i = 0; i < fields.Byte(0x12); ++i) {
    const std::size_t at = 0x13 + i * kPeerSize;
    // Some boards count more peers than the structure holds.
    if (!fields.Has(at, kPeerSize)) break;
    record.peers.push_back(fields.AddressAt(at, at + 2));
  }
  return record;
}

std::optional<OnBoardRecord> DecodeOnBoardRecord(Structure structure) {
  const Fields fields(structure);
  if (!fields.Has(0x07, 4)) return std::nullopt;
  OnBoardRecord record;
  record.handle = fields.Word(0x02);
  record.designation = fields.Text(0x04);
  record.enabled = (fields.Byte(0x05) & 0x80) != 0;
  record.address = fields.AddressAt(0x07, 0x09);
  return record;
}

std::optional<BoardRecord> DecodeBoardRecord(Structure structure) {
  const Fields fields(structure);
  if (!fields.Has(0x0E, 1)) return std::nullopt;
  BoardRecord record;
  record.product = fields.Text(0x05);
  for (std::size_t i = 0; i < fields.Byte(0x0E); ++i) {
    const std::size_t at = 0x0F + i * kHandleSize;
    if (!fields.Has(at, kHandleSize)) break;
    record.contained.push_back(fields.Word(at));
  }
  return record;
}

}  // namespace topology
