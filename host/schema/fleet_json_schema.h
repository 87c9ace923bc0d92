// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace pciinfo {

/// The definitions of the JSON Schema for the answers of `fleet --format json`, as a JSON object.
/// "sql" is not among them: its columns are those of the query.
inline constexpr const char* kFleetJsonSchema = R"({
  "fleetNumber": {"description": "null: not known", "type": ["integer", "null"]},
  "fleetTime": {
    "description": "In UTC.",
    "type": "string",
    "pattern": "^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d$"
  },
  "fleetMachines": {
    "description": "pciinfo fleet DATABASE machines --format json",
    "type": "object",
    "required": ["machines"],
    "maxProperties": 1,
    "properties": {
      "machines": {"type": "array", "items": {"$ref": "#/$defs/fleetMachine"}}
    }
  },
  "fleetMachine": {
    "description": "A line of it with --format jsonl",
    "type": "object",
    "required": ["machine", "maker", "product", "board_maker", "board_product", "board_version",
      "bios_maker", "bios_version", "bios_date", "system_uuid", "machine_id", "free_slots",
      "problems", "complete", "troubles", "version", "first_seen", "last_seen"],
    "properties": {
      "machine": {"type": "string"},
      "maker": {"type": "string"},
      "product": {"type": "string"},
      "board_maker": {"type": "string"},
      "board_product": {"type": "string"},
      "board_version": {"type": "string"},
      "bios_maker": {"type": "string"},
      "bios_version": {"type": "string"},
      "bios_date": {"type": "string"},
      "system_uuid": {"type": "string"},
      "machine_id": {"type": "string"},
      "free_slots": {"$ref": "#/$defs/fleetNumber"},
      "problems": {"$ref": "#/$defs/fleetNumber"},
      "complete": {"$ref": "#/$defs/fleetNumber"},
      "troubles": {"type": "string"},
      "version": {"type": "string"},
      "first_seen": {"$ref": "#/$defs/fleetTime"},
      "last_seen": {"$ref": "#/$defs/fleetTime"}
    }
  },
  "fleetCards": {
    "description": "pciinfo fleet DATABASE cards --format json",
    "type": "object",
    "required": ["cards"],
    "maxProperties": 1,
    "properties": {
      "cards": {"type": "array", "items": {"$ref": "#/$defs/fleetCard"}}
    }
  },
  "fleetCard": {
    "description": "A line of it with --format jsonl",
    "type": "object",
    "required": ["machine", "slot", "address", "name", "vendor_id", "device_id",
      "subsystem_vendor_id", "subsystem_id", "vendor", "device", "subsystem", "class_code",
      "class_name", "revision", "driver", "firmware", "serial_number", "part_number",
      "product_name", "link_width", "max_link_width", "link_speed", "max_link_speed", "numa_node",
      "place", "certainty", "first_seen", "last_seen"],
    "properties": {
      "machine": {"type": "string"},
      "slot": {"type": "string"},
      "address": {"type": "string"},
      "name": {"type": "string"},
      "vendor_id": {"type": "string"},
      "device_id": {"type": "string"},
      "subsystem_vendor_id": {"type": "string"},
      "subsystem_id": {"type": "string"},
      "vendor": {"type": "string"},
      "device": {"type": "string"},
      "subsystem": {"type": "string"},
      "class_code": {"type": "string"},
      "class_name": {"type": "string"},
      "revision": {"$ref": "#/$defs/fleetNumber"},
      "driver": {"type": "string"},
      "firmware": {"type": "string"},
      "serial_number": {"type": "string"},
      "part_number": {"type": "string"},
      "product_name": {"type": "string"},
      "link_width": {"$ref": "#/$defs/fleetNumber"},
      "max_link_width": {"$ref": "#/$defs/fleetNumber"},
      "link_speed": {"type": "string"},
      "max_link_speed": {"type": "string"},
      "numa_node": {"$ref": "#/$defs/fleetNumber"},
      "place": {"type": "string"},
      "certainty": {"type": "string"},
      "first_seen": {"$ref": "#/$defs/fleetTime"},
      "last_seen": {"$ref": "#/$defs/fleetTime"}
    }
  },
  "fleetSlots": {
    "description": "pciinfo fleet DATABASE slots --format json",
    "type": "object",
    "required": ["slots"],
    "maxProperties": 1,
    "properties": {
      "slots": {"type": "array", "items": {"$ref": "#/$defs/fleetSlot"}}
    }
  },
  "fleetSlot": {
    "description": "A line of it with --format jsonl",
    "type": "object",
    "required": ["machine", "slot", "state", "type", "width", "lanes", "length", "max_link_width",
      "max_link_speed", "numa_node", "shared_with", "conflicts", "first_seen", "last_seen"],
    "properties": {
      "machine": {"type": "string"},
      "slot": {"type": "string"},
      "state": {"enum": ["occupied", "empty", "unknown"]},
      "type": {"type": "string"},
      "width": {"type": "string"},
      "lanes": {"$ref": "#/$defs/fleetNumber"},
      "length": {"type": "string"},
      "max_link_width": {"$ref": "#/$defs/fleetNumber"},
      "max_link_speed": {"type": "string"},
      "numa_node": {"$ref": "#/$defs/fleetNumber"},
      "shared_with": {"type": "string"},
      "conflicts": {"type": "string"},
      "first_seen": {"$ref": "#/$defs/fleetTime"},
      "last_seen": {"$ref": "#/$defs/fleetTime"}
    }
  },
  "fleetFinds": {
    "description": "pciinfo fleet DATABASE find TEXT --format json",
    "type": "object",
    "required": ["found"],
    "maxProperties": 1,
    "properties": {
      "found": {"type": "array", "items": {"$ref": "#/$defs/fleetFound"}}
    }
  },
  "fleetFound": {
    "description": "A line of it with --format jsonl",
    "type": "object",
    "required": ["machine", "slot", "address", "name", "found_by", "found", "vendor_id",
      "device_id", "subsystem_vendor_id", "subsystem_id", "driver", "firmware", "serial_number",
      "part_number", "place", "first_seen", "last_seen"],
    "properties": {
      "machine": {"type": "string"},
      "slot": {"type": "string"},
      "address": {"type": "string"},
      "name": {"type": "string"},
      "found_by": {"type": "string"},
      "found": {"type": "string"},
      "vendor_id": {"type": "string"},
      "device_id": {"type": "string"},
      "subsystem_vendor_id": {"type": "string"},
      "subsystem_id": {"type": "string"},
      "driver": {"type": "string"},
      "firmware": {"type": "string"},
      "serial_number": {"type": "string"},
      "part_number": {"type": "string"},
      "place": {"type": "string"},
      "first_seen": {"$ref": "#/$defs/fleetTime"},
      "last_seen": {"$ref": "#/$defs/fleetTime"}
    }
  },
  "fleetFirmwareVersions": {
    "description": "pciinfo fleet DATABASE firmware --format json",
    "type": "object",
    "required": ["firmware"],
    "maxProperties": 1,
    "properties": {
      "firmware": {"type": "array", "items": {"$ref": "#/$defs/fleetFirmware"}}
    }
  },
  "fleetFirmware": {
    "description": "A line of it with --format jsonl",
    "type": "object",
    "required": ["kind", "name", "vendor_id", "device_id", "subsystem_vendor_id", "subsystem_id",
      "vendor", "product", "firmware", "count", "machines"],
    "properties": {
      "kind": {"enum": ["card", "bios"]},
      "name": {"type": "string"},
      "vendor_id": {"type": "string"},
      "device_id": {"type": "string"},
      "subsystem_vendor_id": {"type": "string"},
      "subsystem_id": {"type": "string"},
      "vendor": {"type": "string"},
      "product": {"type": "string"},
      "firmware": {"type": "string"},
      "count": {"$ref": "#/$defs/fleetNumber"},
      "machines": {"$ref": "#/$defs/fleetNumber"}
    }
  },
  "fleetChanges": {
    "description": "pciinfo fleet DATABASE changes --format json",
    "type": "object",
    "required": ["changes"],
    "maxProperties": 1,
    "properties": {
      "changes": {"type": "array", "items": {"$ref": "#/$defs/fleetChange"}}
    }
  },
  "fleetChange": {
    "description": "A line of it with --format jsonl",
    "type": "object",
    "required": ["at", "machine", "kind", "object", "change", "property", "before", "after"],
    "properties": {
      "at": {"$ref": "#/$defs/fleetTime"},
      "machine": {"type": "string"},
      "kind": {"type": "string"},
      "object": {"type": "string"},
      "change": {"enum": ["appeared", "changed", "gone"]},
      "property": {"type": "string"},
      "before": {"type": "string"},
      "after": {"type": "string"}
    }
  },
  "fleetFindings": {
    "description": "pciinfo fleet DATABASE findings --format json; without one it is as that of check",
    "type": "object",
    "required": ["findings"],
    "maxProperties": 1,
    "properties": {
      "findings": {"type": "array", "items": {"$ref": "#/$defs/fleetFinding"}, "minItems": 1}
    }
  },
  "fleetFinding": {
    "description": "A line of it with --format jsonl",
    "type": "object",
    "required": ["machine", "severity", "code", "object", "text", "first_seen", "last_seen"],
    "properties": {
      "machine": {"type": "string"},
      "severity": {"enum": ["note", "warning", "error"]},
      "code": {"type": "string"},
      "object": {"type": "string"},
      "text": {"type": "string"},
      "first_seen": {"$ref": "#/$defs/fleetTime"},
      "last_seen": {"$ref": "#/$defs/fleetTime"}
    }
  }
})";

}  // namespace pciinfo
