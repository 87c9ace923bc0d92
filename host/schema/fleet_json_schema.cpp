// SPDX-License-Identifier: Apache-2.0
#include "host/schema/fleet_json_schema.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace pciinfo {
namespace {

using Columns = std::vector<std::string>;

/// An answer: an object with one list, whose items have the same columns, none of them left out.
struct FleetAnswer {
  const char* name;      ///< of its definition
  const char* question;  ///< of `fleet`, with its text
  const char* list;
  const char* item;  ///< the name of the definition of a row
  Columns columns;
  bool isNeverEmpty = false;
};

const std::vector<FleetAnswer>& FleetAnswers() {
  static const std::vector<FleetAnswer> kAnswers{
      {"fleetMachines",
       "machines",
       "machines",
       "fleetMachine",
       {"machine", "maker", "product", "board_maker", "board_product", "board_version",
        "bios_maker", "bios_version", "bios_date", "system_uuid", "machine_id", "free_slots",
        "problems", "complete", "troubles", "version", "first_seen", "last_seen"}},
      {"fleetCards",
       "cards",
       "cards",
       "fleetCard",
       {"machine",
        "slot",
        "address",
        "name",
        "vendor_id",
        "device_id",
        "subsystem_vendor_id",
        "subsystem_id",
        "vendor",
        "device",
        "subsystem",
        "class_code",
        "class_name",
        "revision",
        "driver",
        "firmware",
        "serial_number",
        "part_number",
        "product_name",
        "link_width",
        "max_link_width",
        "link_speed",
        "max_link_speed",
        "numa_node",
        "place",
        "certainty",
        "first_seen",
        "last_seen"}},
      {"fleetSlots",
       "slots",
       "slots",
       "fleetSlot",
       {"machine", "slot", "state", "type", "width", "lanes", "length", "max_link_width",
        "max_link_speed", "numa_node", "shared_with", "conflicts", "first_seen", "last_seen"}},
      {"fleetFinds",
       "find TEXT",
       "found",
       "fleetFound",
       {"machine", "slot", "address", "name", "found_by", "found", "vendor_id", "device_id",
        "subsystem_vendor_id", "subsystem_id", "driver", "firmware", "serial_number", "part_number",
        "place", "first_seen", "last_seen"}},
      {"fleetFirmwareVersions",
       "firmware",
       "firmware",
       "fleetFirmware",
       {"kind", "name", "vendor_id", "device_id", "subsystem_vendor_id", "subsystem_id", "vendor",
        "product", "firmware", "count", "machines"}},
      {"fleetChanges",
       "changes",
       "changes",
       "fleetChange",
       {"at", "machine", "kind", "object", "change", "property", "before", "after"}},
      // An empty list has the definition of `check`, which prints the same.
      {"fleetFindings",
       "findings",
       "findings",
       "fleetFinding",
       {"machine", "severity", "code", "object", "text", "first_seen", "last_seen"},
       true}};
  return kAnswers;
}

nlohmann::ordered_json ColumnJson(const std::string& item, const std::string& column) {
  static const std::vector<std::string> kTimes{"at", "first_seen", "last_seen"};
  static const std::vector<std::string> kNumbers{
      "free_slots",     "problems",  "complete", "revision", "link_width",
      "max_link_width", "numa_node", "lanes",    "count",    "machines"};
  const auto isAmong = [&column](const std::vector<std::string>& names) {
    return std::find(names.begin(), names.end(), column) != names.end();
  };
  if (isAmong(kTimes)) return {{"$ref", "#/$defs/fleetTime"}};
  if (isAmong(kNumbers)) return {{"$ref", "#/$defs/fleetNumber"}};
  if (column == "state") return {{"enum", {"occupied", "empty", "unknown"}}};
  if (column == "kind" && item == "fleetFirmware") return {{"enum", {"card", "bios"}}};
  if (column == "change") return {{"enum", {"appeared", "changed", "gone"}}};
  if (column == "severity") return {{"enum", {"note", "warning", "error"}}};
  return {{"type", "string"}};
}

nlohmann::ordered_json AnswerJson(const FleetAnswer& answer) {
  const std::string ending = answer.isNeverEmpty ? "; without one it is as that of check" : "";
  nlohmann::ordered_json list = {{"type", "array"},
                                 {"items", {{"$ref", std::string("#/$defs/") + answer.item}}}};
  if (answer.isNeverEmpty) list["minItems"] = 1;
  return {{"description",
           std::string("pciinfo fleet DATABASE ") + answer.question + " --format json" + ending},
          {"type", "object"},
          {"required", {answer.list}},
          {"maxProperties", 1},
          {"properties", {{answer.list, std::move(list)}}}};
}

nlohmann::ordered_json RowJson(const FleetAnswer& answer) {
  nlohmann::ordered_json properties;
  for (const std::string& column : answer.columns) {
    properties[column] = ColumnJson(answer.item, column);
  }
  return {{"description", "A line of it with --format jsonl"},
          {"type", "object"},
          {"required", answer.columns},
          {"properties", std::move(properties)}};
}

}  // namespace

nlohmann::ordered_json FleetDefinitions() {
  nlohmann::ordered_json definitions = {
      {"fleetNumber", {{"description", "null: not known"}, {"type", {"integer", "null"}}}},
      {"fleetTime",
       {{"description", "In UTC."},
        {"type", "string"},
        {"pattern", R"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d$)"}}}};
  for (const FleetAnswer& answer : FleetAnswers()) {
    definitions[answer.name] = AnswerJson(answer);
    definitions[answer.item] = RowJson(answer);
  }
  return definitions;
}

}  // namespace pciinfo
