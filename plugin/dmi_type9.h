// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// A 16-bit little-endian field of a firmware structure.
struct DMIWord {
  std::uint8_t low;
  std::uint8_t high;

  std::uint16_t Value() const { return static_cast<std::uint16_t>(high << 8 | low); }
};

/// One peer group of a slot (SMBIOS 7.10.9).
struct DMIPeerGroup {
  DMIWord segmentGroup;
  std::uint8_t bus;
  std::uint8_t deviceFunction;
  std::uint8_t dataBusWidth;
};

/// The maximum number of peer groups; a larger count is not a count of peer groups.
inline constexpr int kMaxPeerGroups = 8;

/// System Slots structure (SMBIOS 7.10) with the layout of the firmware's table. A structure may be
/// shorter, so read it only inside the buffer of a StructureReader, where zeros follow it.
struct DMIType9 {
  std::uint8_t type;
  std::uint8_t length;  ///< of the formatted area; the string set follows it
  DMIWord handle;
  std::uint8_t designation;  ///< string number, 0 for none
  std::uint8_t slotType;
  std::uint8_t dataBusWidth;
  std::uint8_t currentUsage;
  std::uint8_t slotLength;
  DMIWord slotId;
  std::uint8_t characteristics1;
  std::uint8_t characteristics2;
  DMIWord segmentGroup;  ///< this field and the next ones: since SMBIOS 2.6
  std::uint8_t bus;
  std::uint8_t deviceFunction;    ///< device in bits 7..3, function in bits 2..0
  std::uint8_t baseDataBusWidth;  ///< this field and the next ones: since SMBIOS 3.2
  std::uint8_t peerGroupingCount;
  std::array<DMIPeerGroup, kMaxPeerGroups> peerGroups;
};

static_assert(alignof(DMIType9) == 1);
static_assert(offsetof(DMIType9, slotId) == 0x09);
static_assert(offsetof(DMIType9, segmentGroup) == 0x0D);
static_assert(offsetof(DMIType9, bus) == 0x0F);
static_assert(offsetof(DMIType9, peerGroupingCount) == 0x12);
static_assert(offsetof(DMIType9, peerGroups) == 0x13);
static_assert(sizeof(DMIPeerGroup) == 5);

/// SMBIOS structure types.
inline constexpr int kSystemSlotsType = 9;
inline constexpr int kOemStringsType = 11;

/// A structure of this length or less has no bus information (SMBIOS 2.5 and earlier).
inline constexpr int kLengthWithoutBus = 16;

/// Slot usage "in use" (SMBIOS 7.10.3).
inline constexpr std::uint8_t kUsageInUse = 4;
