// SPDX-License-Identifier: Apache-2.0
#include "pci/slot_location.h"

#include "plugin/values.h"

namespace {

int PeerGroupCount(const DMIType9& slot) {
  const bool counted = slot.length > kLengthWithoutBus && slot.peerGroupingCount <= kMaxPeerGroups;
  return counted ? slot.peerGroupingCount : 0;
}

void AppendUnlessOnBusZero(SlotLocation location, std::uint16_t* nextTag,
                           std::vector<SlotLocation>* locations) {
  location.tag = (*nextTag)++;
  if (location.bus != 0) locations->push_back(location);
}

// Returns the hexadecimal number in the `digits` characters after the first occurrence of `marker`;
// 0 if there is no such marker.
std::uint16_t NumberBehind(const std::string& text, const std::string& marker, std::size_t digits) {
  const std::size_t place = text.find(marker);
  if (place == std::string::npos) return 0;
  return ExtractDecimalDataToHex<unsigned short>(text.substr(place + marker.size(), digits));
}

}  // namespace

void AppendSlotLocations(const DMIType9& slot, std::uint16_t* nextTag,
                         std::vector<SlotLocation>* locations) {
  SlotLocation location;
  location.slotId = slot.slotId.Value();
  location.segmentGroup = slot.segmentGroup.Value();
  location.bus = slot.bus;
  location.device = static_cast<std::uint8_t>(slot.deviceFunction >> 3);
  location.function = slot.deviceFunction & 7;
  location.currentUsage = slot.currentUsage;
  AppendUnlessOnBusZero(location, nextTag, locations);

  for (int k = 0; k < PeerGroupCount(slot); ++k) {
    const DMIPeerGroup& peer = slot.peerGroups[static_cast<std::size_t>(k)];
    location.segmentGroup = peer.segmentGroup.Value();
    location.bus = peer.bus;
    AppendUnlessOnBusZero(location, nextTag, locations);
  }
}

bool DescribesSlot(const std::string& oemString) { return oemString.compare(0, 3, "$T9") == 0; }

void AppendSlotLocation(const std::string& oemString, std::uint16_t* nextTag,
                        std::vector<SlotLocation>* locations) {
  if (!DescribesSlot(oemString)) return;
  SlotLocation location;
  // Only the low byte counts: a function refers to its slot by one byte of the slot's number.
  location.slotId = NumberBehind(oemString, "SID:0x", 4) & 0xFF;
  location.segmentGroup = NumberBehind(oemString, "SegGrp:0x", 4) & 0xFF;
  location.bus = static_cast<std::uint8_t>(NumberBehind(oemString, "B:0x", 2));
  // Every marker is searched from the start. So in a string with a slot ID, "D:0x" is found inside
  // "SID:0x". The rule is fixed so that reports of different machines can be compared.
  location.device = static_cast<std::uint8_t>(NumberBehind(oemString, "D:0x", 2));
  location.function = static_cast<std::uint8_t>(NumberBehind(oemString, "F:0x", 2));
  AppendUnlessOnBusZero(location, nextTag, locations);
}

std::string FirstString(const unsigned char* structure) {
  return reinterpret_cast<const char*>(structure + structure[1]);
}
