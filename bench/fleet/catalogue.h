// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace bench {

/// What the system makes of a card's functions.
enum class CardUse { kOther, kNetwork, kInfiniband, kNvme, kStorage, kGraphics };

/// A model of cards.
struct CardModel {
  unsigned vendorId = 0;
  unsigned deviceId = 0;
  unsigned subsystemId = 0;  ///< the subsystem vendor is the vendor
  unsigned baseClass = 0;
  unsigned subclass = 0;
  std::string vendor;
  std::string device;
  std::string className;
  std::string driver;
  unsigned functions = 1;
  unsigned lanes = 0;
  unsigned generation = 0;  ///< of PCI Express
  CardUse use = CardUse::kOther;

  /// Whether it sits in a drive bay, not in a card slot.
  bool IsDrive() const { return use == CardUse::kNvme; }
  /// Whether the system knows the version of its firmware.
  bool TellsFirmware() const { return IsDrive() || use == CardUse::kInfiniband; }
};

/// A model of machines.
struct MachineKind {
  std::string maker;
  std::string product;
  unsigned generation = 0;      ///< of PCI Express
  std::vector<unsigned> slots;  ///< the lanes of each card slot
  unsigned bays = 0;            ///< for NVMe drives
};

/// 40 models of machines of made-up makers.
const std::vector<MachineKind>& MachineKinds();

/// 300 models of cards with the vendor IDs of real makers: 230 for card slots, then 70 drives.
const std::vector<CardModel>& CardModels();

/// How many of CardModels() are for card slots; they come first.
std::size_t SlotCardModels();

}  // namespace bench
