// SPDX-License-Identifier: Apache-2.0

// The checks of links that do less than both of their ends and the slot allow.

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <map>

#include "host/check/machine_checks.h"
#include "host/machine/cards.h"
#include "host/machine/link_text.h"

namespace pciinfo {
namespace {

/// Returns the gigatransfers in "8.0 GT/s" without the fraction, which no comparison needs; 0 for
/// other texts.
unsigned RateOf(const std::string& speed) {
  unsigned rate = 0;
  std::from_chars(speed.data(), speed.data() + speed.size(), rate);
  return rate;
}

/// Lanes by the data bus width of a PCI Express slot (DSP0134, 7.10.2).
std::optional<unsigned> LanesOf(const MachineSlot& slot) {
  constexpr std::array<unsigned, 7> kLanes{1, 2, 4, 8, 12, 16, 32};
  constexpr unsigned kOneLane = 0x08;
  if (!slot.width || *slot.width < kOneLane || *slot.width >= kOneLane + kLanes.size()) {
    return std::nullopt;
  }
  return kLanes[*slot.width - kOneLane];
}

/// The rate of the PCI Express generation in the type of a slot (DSP0134, 7.10.1). Types without a
/// generation say nothing: firmware uses them for slots of every generation.
std::optional<unsigned> RateOf(const MachineSlot& slot) {
  struct Generation {
    unsigned firstType;
    unsigned lastType;
    unsigned rate;
  };
  constexpr std::array<Generation, 4> kGenerations{
      {{0xAB, 0xB0, 5}, {0xB1, 0xB6, 8}, {0xB8, 0xBD, 16}, {0xBE, 0xC3, 32}}};
  for (const Generation& generation : kGenerations) {
    const bool isIt = slot.type >= generation.firstType && slot.type <= generation.lastType;
    if (isIt) return generation.rate;
  }
  return std::nullopt;
}

/// What the slots at a port allow.
struct SlotLimits {
  unsigned lanes = 32;
  unsigned rate = 64;
};

/// The limits by the address of the port. A board may give a slot fewer lanes, or wires for a lower
/// speed, than its port has.
std::map<std::string, SlotLimits> LimitsByPort(const MachineModel& machine) {
  std::map<std::string, SlotLimits> limits;
  for (const MachineSlot& slot : machine.slots) {
    for (const std::string& port : slot.ports) {
      SlotLimits& limit = limits[port];
      limit.lanes = std::min(limit.lanes, LanesOf(slot).value_or(limit.lanes));
      limit.rate = std::min(limit.rate, RateOf(slot).value_or(limit.rate));
    }
  }
  return limits;
}

/// Describes what is wrong with a link; empty if nothing is.
using LinkTest = std::string (*)(const Link& card, const Link& port, const SlotLimits& slot);

std::string NarrowLink(const Link& card, const Link& port, const SlotLimits& slot) {
  if (!card.width || !card.maxWidth || !port.maxWidth) return "";
  const unsigned possible = std::min({*card.maxWidth, *port.maxWidth, slot.lanes});
  return *card.width < possible ? fmt::format("x{} of x{}", *card.width, possible) : "";
}

std::string SlowLink(const Link& card, const Link& port, const SlotLimits& slot) {
  const unsigned now = RateOf(card.speed);
  const unsigned possible = std::min({RateOf(card.maxSpeed), RateOf(port.maxSpeed), slot.rate});
  return now != 0 && now < possible
             ? fmt::format("{} of {} GT/s", now == 2 ? "2.5" : fmt::to_string(now), possible)
             : "";
}

/// Graphics and accelerators lower the speed of their link while they are idle, and their switches
/// and sound with them. Storage, networks and USB leave it as it was negotiated.
bool KeepsSpeed(const MachineFunction& function, const FunctionFacts& facts) {
  if (!facts.powerState.empty() && facts.powerState != "D0") return false;
  const unsigned baseClass = function.baseClass.value_or(0);
  return baseClass == 0x01U || baseClass == 0x02U || baseClass == 0x0CU;
}

bool IsAnyLink(const MachineFunction& /*function*/, const FunctionFacts& /*facts*/) { return true; }

template <class Fits>
std::vector<AffectedObject> TestLinks(const MachineFacts& facts, const Fits& fits, LinkTest test) {
  const MachineModel& machine = facts.machine;
  const auto limits = LimitsByPort(machine);
  std::vector<AffectedObject> objects;
  for (std::size_t i = 0; i < machine.functions.size(); ++i) {
    const MachineFunction& function = machine.functions[i];
    const MachineFunction* const port = PortOfLink(function, machine);
    if (port == nullptr || !fits(function, facts.functions[i])) continue;
    const auto limit = limits.find(FormatAddress(port->address));
    std::string detail =
        test(function.link, port->link, limit == limits.end() ? SlotLimits() : limit->second);
    if (detail.empty()) continue;
    detail += " below port " + AddressText(port->address, machine.HasDomains());
    objects.push_back(ObjectOf(function, machine, std::move(detail)));
  }
  return objects;
}

std::vector<AffectedObject> NarrowLinks(const MachineFacts& facts) {
  return TestLinks(facts, &IsAnyLink, &NarrowLink);
}

std::vector<AffectedObject> SlowLinks(const MachineFacts& facts) {
  return TestLinks(facts, &KeepsSpeed, &SlowLink);
}

const std::vector<MachineCheck> kLinkChecks = {
    {"link-narrow", Severity::kWarning,
     "These links have fewer lanes than both of their ends and the slot allow.",
     "Seat the card and its riser or cable again and clean the contacts. The board may also share "
     "lanes with another slot: see its manual.",
     &NarrowLinks},
    {"link-slow", Severity::kWarning,
     "These links are slower than both of their ends and the slot allow, and these devices do not "
     "lower their speed to save power.",
     "Seat the card and its riser or cable again, and look for a limit in the setup of the "
     "firmware.",
     &SlowLinks},
};

}  // namespace

const std::vector<MachineCheck>& LinkChecks() { return kLinkChecks; }

}  // namespace pciinfo
