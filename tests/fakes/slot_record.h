// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Builds a System Slots structure (SMBIOS 7.10) from its fields.
struct SlotRecord {
  std::uint8_t length = 0x18;
  std::uint8_t designation = 1;
  std::uint8_t slotType = 0xA5;
  std::uint8_t dataBusWidth = 0x0D;
  std::uint8_t currentUsage = 4;
  std::uint8_t slotLength = 4;
  std::uint16_t slotId = 1;
  std::uint8_t characteristics1 = 0;
  std::uint8_t characteristics2 = 0;
  std::uint16_t segmentGroup = 0;
  std::uint8_t bus = 0;
  std::uint8_t deviceFunction = 0;
  std::uint8_t peerCount = 0;
  struct Peer {
    std::uint16_t segmentGroup = 0;
    std::uint8_t bus = 0;
    std::uint8_t deviceFunction = 0;
  };
  std::vector<Peer> peers;
  std::vector<std::string> strings{"PCIe Slot 1"};

  /// The bytes of the structure: the fields, cut or filled with zeros to `length`, the strings, and
  /// the zero bytes that end it.
  std::vector<unsigned char> Bytes() const {
    std::vector<unsigned char> bytes{
        9, length, 0, 0, designation, slotType, dataBusWidth, currentUsage, slotLength};
    const auto word = [&](std::uint16_t value) {
      bytes.push_back(static_cast<unsigned char>(value));
      bytes.push_back(static_cast<unsigned char>(value >> 8));
    };
    word(slotId);
    bytes.push_back(characteristics1);
    bytes.push_back(characteristics2);
    word(segmentGroup);
    bytes.insert(bytes.end(), {bus, deviceFunction, 0, peerCount});
    for (const Peer& peer : peers) {
      word(peer.segmentGroup);
      bytes.insert(bytes.end(), {peer.bus, peer.deviceFunction, 0});
    }
    bytes.resize(length);
    for (const std::string& text : strings) {
      bytes.insert(bytes.end(), text.begin(), text.end());
      bytes.push_back(0);
    }
    if (strings.empty()) bytes.push_back(0);
    bytes.push_back(0);
    return bytes;
  }
};
