// SPDX-License-Identifier: Apache-2.0
#include "slots/type9.h"

#include <array>
#include <cstring>

const char* FindSlotString(int index, const unsigned char* record) {
  if (index == 0) return "";
  // Valid lengths are far below 128; a larger one points back to the zeros before the record.
  const auto* text = reinterpret_cast<const char*>(record + static_cast<signed char>(record[1]));
  if (*text == '\0') return "(null string)";
  for (int count = 1; count < index; ++count) text += std::strlen(text) + 1;
  return text;
}

std::uint16_t DataBusWidthInBits(unsigned char code) {
  constexpr unsigned kFirstCode = 2;
  constexpr std::array<std::uint16_t, 6> kBits{1, 8, 16, 32, 64, 128};
  const unsigned place = code - kFirstCode;
  return place < kBits.size() ? kBits[place] : std::uint16_t{0};
}

SlotStatus StatusOfUsage(std::uint8_t currentUsage) {
  // The status of an empty slot and of a slot in use is OK (2).
  switch (currentUsage) {
    case 1:
      return {1, "Other"};
    case 3:
      return {2, "Slot is available"};
    case kUsageInUse:
      return {2, "Slot is in use"};
    default:
      return {0, "Unknown"};
  }
}

std::vector<std::uint16_t> VoltagesOf(std::uint8_t characteristics1) {
  constexpr std::uint16_t kUnknown = 0;
  constexpr std::uint16_t k33Volt = 2;
  constexpr std::uint16_t k5Volt = 3;
  std::vector<std::uint16_t> voltages;
  if (characteristics1 & 0x02) voltages.push_back(k5Volt);
  if (characteristics1 & 0x04) voltages.push_back(k33Volt);
  if (voltages.empty()) voltages.push_back(kUnknown);
  return voltages;
}

int CountOfSlot(const DMIType9& slot) {
  // Both bytes are read as signed, because values above 127 are firmware errors. A structure of 17
  // bytes has no peer count; the byte after it is read instead.
  const auto peers = static_cast<signed char>(slot.peerGroupingCount);
  const auto length = static_cast<signed char>(slot.length);
  const bool counted = peers >= 1 && peers <= kMaxPeerGroups && length > kLengthWithoutBus;
  return counted ? peers + 1 : 1;
}

std::string AllInfo(const std::string& designation, const std::string& tag) {
  return designation == tag ? designation : designation + "," + tag;
}
