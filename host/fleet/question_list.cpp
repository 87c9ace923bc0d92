// SPDX-License-Identifier: Apache-2.0
#include "host/fleet/question_list.h"

#include <algorithm>

namespace pciinfo {
namespace {

// Columns that several tables show.
const ShownColumn kMachine{"machine", {.heading = "MACHINE", .shrinks = true}};
const ShownColumn kSlot{
    "slot", {.heading = "SLOT", .shrinks = true, .colour = Colour::kGreen, .leaves = 1}};
const ShownColumn kAddress{"address", {.heading = "ADDRESS", .colour = Colour::kCyan}};
const ShownColumn kName{"name", {.heading = "NAME", .isSubject = true}};
const ShownColumn kDriver{"driver", {.heading = "DRIVER", .leaves = 3}};
const ShownColumn kFirmware{"firmware", {.heading = "FIRMWARE", .shrinks = true, .leaves = 4}};
const ShownColumn kSerial{"serial_number", {.heading = "SERIAL", .shrinks = true, .leaves = 5}};

FleetQuestion Machines() {
  return {
      "machines",
      "the machines, how many free slots and problems each has, and when it was seen last",
      "SELECT machine, maker, product, board_maker, board_product, board_version, bios_maker,"
      " bios_version, bios_date, system_uuid, machine_id, free_slots, problems, complete, troubles,"
      " version, first_seen, last_seen FROM machines",
      "ORDER BY machine, machine_number",
      {"machine", "maker", "product", "bios"},
      {kMachine,
       {"maker", {.heading = "MAKER", .shrinks = true, .leaves = 3}},
       {"product", {.heading = "PRODUCT", .isSubject = true}},
       {"bios_version", {.heading = "BIOS", .shrinks = true, .leaves = 2}},
       {"free_slots", {.heading = "FREE"}},
       {"problems", {.heading = "PROBLEMS"}},
       {"last_seen", {.heading = "LAST SEEN", .leaves = 1}}},
      "no machine"};
}

FleetQuestion Cards() {
  return {"cards",
          "the cards, in which machine and slot each is, with driver, firmware and serial number",
          "SELECT machine, slot, address, TRIM(vendor || ' ' || device) AS name,"
          " vendor_id, device_id, subsystem_vendor_id, subsystem_id, vendor, device, subsystem,"
          " class_code, class_name, revision, driver, firmware, serial_number, part_number,"
          " product_name, link_width, max_link_width, link_speed, max_link_speed, numa_node, place,"
          " certainty, first_seen, last_seen FROM cards",
          "ORDER BY machine, machine_number, address",
          {"machine", "class", "vendor", "device", "subsystem", "address", "slot", "driver",
           "firmware", "serial"},
          {kMachine, kSlot, kAddress, kName, kDriver, kFirmware, kSerial},
          "no card"};
}

FleetQuestion Slots() {
  return {"slots",
          "the slots; --free: those known to be empty; --width x16: those at least so wide",
          "SELECT machine, slot, state, type, width, lanes, length, max_link_width, max_link_speed,"
          " numa_node, shared_with, conflicts, first_seen, last_seen FROM slots",
          "ORDER BY machine, machine_number, slot, ordinal",
          {"machine", "slot", "state"},
          {kMachine,
           {"slot", {.heading = "SLOT", .colour = Colour::kGreen, .isSubject = true}},
           {"state", {.heading = "STATE"}},
           {"type", {.heading = "TYPE", .shrinks = true, .leaves = 1}},
           {"width", {.heading = "WIDTH"}},
           {"numa_node", {.heading = "NUMA", .leaves = 3}},
           {"shared_with", {.heading = "SHARED WITH", .shrinks = true, .leaves = 2}}},
          "no slot"};
}

FleetQuestion Find() {
  return {"find",
          "TEXT: cards by a part of their name, vendor:device IDs, serial number, hardware address "
          "or interface",
          "",  // see FindStatement
          "",
          {},
          {kMachine,
           kSlot,
           kAddress,
           kName,
           {"found_by", {.heading = "FOUND BY", .shrinks = true, .leaves = 2}},
           {"found", {.heading = "FOUND", .shrinks = true, .leaves = 3}}},
          "nothing"};
}

FleetQuestion Firmware() {
  return {"firmware",
          "[TEXT]: versions of firmware, and how many cards and machines have them; of cards with "
          "that name or these IDs",
          "SELECT kind, TRIM(vendor || ' ' || product) AS name, vendor_id, device_id,"
          " subsystem_vendor_id, subsystem_id, vendor, product, firmware, count, machines"
          " FROM firmware",
          "ORDER BY kind, vendor, product, vendor_id, device_id, subsystem_vendor_id, subsystem_id,"
          " firmware",
          {"vendor", "device", "subsystem", "firmware", "kind"},
          {{"kind", {.heading = "KIND", .leaves = 1}},
           kName,
           {"firmware", {.heading = "FIRMWARE", .shrinks = true}},
           {"count", {.heading = "COUNT"}},
           {"machines", {.heading = "MACHINES"}}},
          "no firmware"};
}

FleetQuestion Changes() {
  return {"changes",
          "what appeared, changed or is gone; --since 7d: only since then",
          "SELECT at, machine, kind, object, change, property, before, after FROM changes",
          "ORDER BY at, machine, machine_number, kind, object, change, property",
          {"machine", "kind", "object", "property"},
          {{"at", {.heading = "SEEN AT", .leaves = 1}},
           kMachine,
           {"kind", {.heading = "KIND", .leaves = 2}},
           {"object", {.heading = "OBJECT", .shrinks = true, .colour = Colour::kCyan}},
           {"change", {.heading = "CHANGE"}},
           {"property", {.heading = "PROPERTY", .shrinks = true}},
           {"before", {.heading = "BEFORE", .shrinks = true}},
           {"after", {.heading = "AFTER", .shrinks = true}}},
          "no change"};
}

FleetQuestion Findings() {
  return {"findings",
          "what \"pciinfo check\" found, and since when",
          "SELECT machine, severity, code, object, text, first_seen, last_seen FROM findings",
          "ORDER BY machine, machine_number, severity, code, object",
          {"machine", "severity", "code", "object"},
          {kMachine,
           {"severity", {.heading = "SEVERITY", .leaves = 2}},
           {"code", {.heading = "CODE"}},
           {"object", {.heading = "OBJECT", .shrinks = true, .colour = Colour::kCyan}},
           {"text", {.heading = "TEXT", .isSubject = true}},
           {"first_seen", {.heading = "SINCE", .leaves = 1}}},
          "no finding"};
}

FleetQuestion Sql() {
  return {"sql", "'SELECT ...': any query; it can only read", "", "", {}, {}, "no row"};
}

}  // namespace

const std::vector<FleetQuestion>& AllFleetQuestions() {
  static const std::vector<FleetQuestion> questions = {Machines(), Cards(),   Slots(),    Find(),
                                                       Firmware(), Changes(), Findings(), Sql()};
  return questions;
}

const FleetQuestion& FleetQuestionNamed(const std::string& name) {
  const std::vector<FleetQuestion>& all = AllFleetQuestions();
  return *std::find_if(all.begin(), all.end(),
                       [&name](const FleetQuestion& question) { return question.name == name; });
}

}  // namespace pciinfo
