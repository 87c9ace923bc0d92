// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/machine/machine_model.h"
#include "host/machine/port_tree.h"

namespace pciinfo {

enum class PartKind {
  kPort,    ///< a root port, a port of a switch, or another bridge, with what is behind it
  kSwitch,  ///< a switch, or a bridge on a card, with its ports
  kCard,    ///< functions that make up one card or device
  kGroup,   ///< functions that are only counted
  kSlot     ///< a slot of which no port is known, with what is in it
};

/// The link of a port in words and lanes.
struct PartLink {
  std::optional<unsigned> width;     ///< in lanes; no value: not known, or the link is down
  std::optional<unsigned> possible;  ///< what both ends allow
  bool isNarrow = false;
  std::string widthText;  ///< "x8 of x16"
  std::string speedText;  ///< "8 GT/s"
};

/// A part of a machine as the drawing shows it, or several equal ones. Texts are printable.
struct Part {
  PartKind kind = PartKind::kCard;
  std::size_t count = 1;
  std::string name;         ///< "Intel I350 Gigabit Network Connection"
  std::string address;      ///< "01:00.0-3"; empty for groups and slots
  std::string slot;         ///< the slot that it leads to or sits in, "A or B"; empty: none
  std::string remark;       ///< what is to be said of the slot in a word or two, "likely"
  std::string state;        ///< of a slot in which nothing is known to be
  bool isNamed = true;      ///< firmware or kernel name the slot
  bool isEmpty = false;     ///< the slot is known to be empty
  bool isDoubtful = false;  ///< what is known of the slot contradicts itself
  std::optional<PartLink> link;
  std::vector<std::size_t> functions;  ///< their places in the machine
  std::vector<std::size_t> slots;      ///< likewise
  std::vector<Part> behind;
};

/// What is on a root bus, or another collection of parts with a title.
struct PartGroup {
  std::string title;  ///< "Bus 00"
  std::string note;   ///< "NUMA node 0"; may be empty
  std::vector<Part> parts;
};

/// Returns what is to be drawn of a tree of functions, bus by bus. Functions of the chip set and
/// ports that lead nowhere are counted, not drawn.
std::vector<PartGroup> PartsOf(const std::vector<RootBus>& tree, const MachineModel& machine);

/// Returns the slots of which neither a port nor a function is known, as a group without parts if
/// there are none.
PartGroup SlotsWithoutPort(const MachineModel& machine);

/// Returns how many parts there are, those behind others included.
std::size_t CountParts(const std::vector<PartGroup>& groups);

/// Merges three or more neighbours into one part with a count if they show the same but for
/// addresses and names of slots.
void FoldParts(std::vector<PartGroup>& groups);

}  // namespace pciinfo
