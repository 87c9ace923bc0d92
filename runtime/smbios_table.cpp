// SPDX-License-Identifier: Apache-2.0
#include "runtime/smbios_table.h"

#include <algorithm>
#include <numeric>
#include <string>

#include "framework/exception.h"
#include "runtime/byte_reader.h"

namespace vtq {

namespace {

constexpr std::size_t kHeaderLength = 4;
constexpr std::size_t kIntermediateOffset = 0x10;
constexpr std::size_t kIntermediateLength = 0x0F;
constexpr int kEndOfTable = 127;

[[noreturn]] void ThrowCorrupt(const std::string& what) {
  throw NQZMVTQ20::TVTQException("the SMBIOS entry point " + what,
                                 NQZMVTQ20::TVTQStatusCode::kCorruptData);
}

// The bytes of an entry point, and those of its `_DMI_` part, must add up to zero.
void CheckSum(const ByteReader& reader, std::size_t offset, std::size_t length) {
  if (!reader.Holds(offset, length)) ThrowCorrupt("is cut short");
  const std::span<const std::uint8_t> bytes = reader.Slice(offset, length);
  const unsigned sum = std::accumulate(bytes.begin(), bytes.end(), 0U);
  if (sum % 256 != 0) ThrowCorrupt("has a wrong checksum");
}

void CheckLengthAndSum(const ByteReader& reader, std::size_t lengthOffset, std::size_t minimum) {
  if (!reader.Holds(lengthOffset, 1)) ThrowCorrupt("is cut short");
  const std::size_t length = reader.U8(lengthOffset);
  if (length < minimum)
    ThrowCorrupt("has an invalid length of " + std::to_string(length) + " bytes");
  CheckSum(reader, 0, length);
}

SmBiosEntryPoint ParseVersion3(const ByteReader& reader) {
  CheckLengthAndSum(reader, 0x06, 0x18);
  return {reader.U8(0x07), reader.U8(0x08), reader.U32(0x0C), 0, true};
}

SmBiosEntryPoint ParseVersion2(const ByteReader& reader) {
  CheckLengthAndSum(reader, 0x05, 0x1E);
  if (!reader.HasText(kIntermediateOffset, "_DMI_")) ThrowCorrupt("has no _DMI_ anchor inside");
  if (reader.Holds(kIntermediateOffset, kIntermediateLength)) {
    CheckSum(reader, kIntermediateOffset, kIntermediateLength);
  }
  return {reader.U8(0x06), reader.U8(0x07), reader.U16(0x16), reader.U16(0x1C), false};
}

SmBiosEntryPoint ParseLegacy(const ByteReader& reader) {
  CheckSum(reader, 0, kIntermediateLength);
  const int revision = reader.U8(0x0E);
  return {revision >> 4, revision & 0x0F, reader.U16(0x06), reader.U16(0x0C), false};
}

// Returns the end of the string set at `offset`, after its two zero bytes; nothing if the bytes end
// before.
std::optional<std::size_t> EndOfStrings(std::span<const std::uint8_t> bytes, std::size_t offset) {
  constexpr std::uint8_t kEnd[] = {0, 0};
  const auto start = bytes.begin() + static_cast<std::ptrdiff_t>(offset);
  const auto found = std::search(start, bytes.end(), std::begin(kEnd), std::end(kEnd));
  if (found == bytes.end()) return std::nullopt;
  return static_cast<std::size_t>(found - bytes.begin()) + std::size(kEnd);
}

}  // namespace

SmBiosEntryPoint ParseSmBiosEntryPoint(std::span<const std::uint8_t> bytes) {
  const ByteReader reader(bytes);
  if (reader.HasText(0, "_SM3_")) return ParseVersion3(reader);
  if (reader.HasText(0, "_SM_")) return ParseVersion2(reader);
  if (reader.HasText(0, "_DMI_")) return ParseLegacy(reader);
  ThrowCorrupt("does not begin with a known anchor");
}

SmBiosWalk::SmBiosWalk(const SmBiosTable& table) noexcept : table_(&table) {}

std::optional<std::span<const std::uint8_t>> SmBiosWalk::Next() noexcept {
  const SmBiosEntryPoint& entry = table_->entryPoint;
  if (ended_ || (entry.structureCount != 0 && delivered_ == entry.structureCount)) return {};
  const std::size_t length = std::min(entry.tableLength, table_->bytes.size());
  const auto bytes = std::span<const std::uint8_t>(table_->bytes).first(length);
  const ByteReader reader(bytes);
  if (!reader.Holds(position_, kHeaderLength)) return {};
  const std::size_t formatted = reader.U8(position_ + 1);
  if (formatted < kHeaderLength || !reader.Holds(position_, formatted)) return {};
  const std::optional<std::size_t> end = EndOfStrings(bytes, position_ + formatted);
  if (!end) return {};
  const std::span<const std::uint8_t> structure = reader.Slice(position_, *end - position_);
  position_ = *end;
  ++delivered_;
  ended_ = entry.endsAtMarker && structure[0] == kEndOfTable;
  return structure;
}

}  // namespace vtq
