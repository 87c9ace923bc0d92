// SPDX-License-Identifier: Apache-2.0
#include "tests/system/slot_structure.h"

#include <cstdio>
#include <stdexcept>
#include <string>

#include "tests/fakes/slot_record.h"

namespace {

using nlohmann::json;

// Lengths of the formatted area (DSP0134 7.10), and of one peer group in it.
constexpr std::uint8_t kWithoutAddress = 0x0D;
constexpr std::uint8_t kWithAddress = 0x11;
constexpr std::uint8_t kWithPeers = 0x13;
constexpr std::uint8_t kPeerGroup = 5;

// DSP0134 7.10.6, 7.10.7
constexpr std::uint8_t kProvides33Volts = 0x04;
constexpr std::uint8_t kHotPlug = 0x02;

// DSP0134 7.10.3
std::uint8_t ReadUsage(const std::string& text) {
  if (text == "Available") return 3;
  if (text == "In Use") return 4;
  throw std::runtime_error("not a usage of a slot: " + text);
}

SlotRecord::Peer ReadAddress(const std::string& text) {
  unsigned segment = 0;
  unsigned bus = 0;
  unsigned device = 0;
  unsigned function = 0;
  if (std::sscanf(text.c_str(), "%4x:%2x:%2x.%1x", &segment, &bus, &device, &function) != 4 ||
      device > 0x1F || function > 7) {
    throw std::runtime_error("not an address: " + text);
  }
  return {static_cast<std::uint16_t>(segment), static_cast<std::uint8_t>(bus),
          static_cast<std::uint8_t>(device << 3 | function)};
}

void SetAddress(const std::string& text, SlotRecord* slot) {
  const SlotRecord::Peer address = ReadAddress(text);
  slot->length = kWithAddress;
  slot->segmentGroup = address.segmentGroup;
  slot->bus = address.bus;
  slot->deviceFunction = address.deviceFunction;
}

void SetPeers(const std::vector<std::string>& peers, SlotRecord* slot) {
  for (const std::string& text : peers) slot->peers.push_back(ReadAddress(text));
  slot->peerCount = static_cast<std::uint8_t>(peers.size());
  slot->length = static_cast<std::uint8_t>(kWithPeers + kPeerGroup * peers.size());
}

}  // namespace

std::vector<unsigned char> MakeSlotStructure(const json& record, std::uint16_t handle) {
  SlotRecord slot;
  slot.length = kWithoutAddress;
  slot.strings = {record.at("designation")};
  slot.slotId = record.at("id");
  slot.currentUsage = ReadUsage(record.at("usage"));
  slot.characteristics1 = kProvides33Volts;
  slot.characteristics2 = record.at("hotPlug") ? kHotPlug : 0;
  if (record.contains("at")) SetAddress(record["at"], &slot);
  if (record.contains("peers")) SetPeers(record["peers"], &slot);
  std::vector<unsigned char> bytes = slot.Bytes();
  bytes[2] = static_cast<unsigned char>(handle);
  bytes[3] = static_cast<unsigned char>(handle >> 8);
  return bytes;
}
