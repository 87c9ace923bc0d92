// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "topology/address.h"

namespace topology {

/// How sure a statement is: certain when a source names the very thing, likely when it was
/// concluded.
enum class Certainty { kCertain, kLikely };

/// Where a slot is known from.
enum class SlotSource { kFirmwareRecord, kKernelSlot, kAcpi, kPort };

enum class SlotState { kUnknown, kEmpty, kOccupied };

/// What a record or a kernel slot means: what is behind a port, one device of a conventional bus
/// with what is behind it, or nothing that could be found.
struct Target {
  enum class Kind { kNone, kPort, kDevice };

  Kind kind = Kind::kNone;
  std::size_t port = 0;  ///< place of the function, for kPort
  Address device;        ///< its function number is 0, for kDevice
  Certainty certainty = Certainty::kCertain;
  /// A clause such as "SMBIOS record 0x0046 names port 0000:00:01.1"; for kNone: why.
  std::string evidence;

  /// Whether both mean the same place.
  bool IsSamePlace(const Target& other) const;
};

/// A slot of the machine. Records, kernel slots, ports and functions are meant by their places in
/// the vectors of the Machine.
struct Slot {
  std::string name;  ///< unique in the machine
  SlotSource source = SlotSource::kFirmwareRecord;
  std::optional<std::size_t> record;
  std::vector<std::size_t> kernelSlots;  ///< one for each port, where the kernel has them
  std::vector<Target> targets;           ///< where it leads; empty when that is not known
  std::string noTargetBecause;           ///< a sentence; empty when there is a target
  std::optional<std::size_t> outer;      ///< the slot that holds this one, as with a riser
  SlotState state = SlotState::kUnknown;
  std::vector<std::string> conflicts;  ///< sentences
};

/// A function that sits in a slot, with the sentence that tells why.
struct Occupant {
  std::size_t function = 0;
  std::size_t slot = 0;
  Certainty certainty = Certainty::kCertain;
  std::string evidence;
};

/// Slots for which the firmware names the same place, and the functions that sit in one of them.
struct SharedPlace {
  Target target;
  std::vector<std::size_t> slots;
  std::vector<std::size_t> functions;
  std::string evidence;
};

/// Where a function is.
enum class Place { kSlot, kShared, kUnnamedSlot, kOnBoard, kUnknown };

struct FunctionPlace {
  Place place = Place::kUnknown;
  std::string reason;  ///< a sentence
};

struct Resolution {
  std::vector<Slot> slots;
  std::vector<Occupant> occupants;  ///< in the order of the functions
  std::vector<SharedPlace> shared;
  std::vector<FunctionPlace> places;  ///< one for each function
};

}  // namespace topology
