// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace pciinfo {

/// The definitions of the JSON Schema for the lines of `--format jsonl`, as a JSON object.
inline constexpr const char* kLinesJsonSchema = R"({
  "stamp": {
    "description": "Which machine a line is about, and when it was so.",
    "type": "object",
    "required": ["system"],
    "properties": {
      "system": {
        "description": "The name of the system; empty if it is not known.",
        "type": "string"
      },
      "systemUUID": {
        "description": "Of the firmware (DSP0134 7.2.1).",
        "type": "string",
        "pattern": "^[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}$"
      },
      "machineID": {
        "description": "Of the operating system (/etc/machine-id).",
        "type": "string",
        "pattern": "^[0-9a-f]{32}$"
      },
      "collected": {
        "description": "In UTC; missing if a capture does not say when it was made.",
        "type": "string",
        "pattern": "^[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z$"
      }
    }
  },
  "machineLine": {
    "description": "pciinfo --format jsonl: all of a machine in one line.",
    "allOf": [{"$ref": "#/$defs/stamp"}, {"$ref": "#/$defs/machineDocument"}],
    "required": ["version", "findings", "troubles"],
    "properties": {
      "version": {"description": "Of pciinfo.", "type": "string"},
      "findings": {
        "description": "What pciinfo check reports.",
        "type": "array",
        "items": {"$ref": "#/$defs/finding"}
      },
      "troubles": {
        "description": "What could not be collected, and why: those of notRead that are failures.",
        "type": "array",
        "items": {"type": "string"}
      }
    }
  },
  "deviceLine": {
    "description": "A line of pciinfo devices --format jsonl.",
    "allOf": [{"$ref": "#/$defs/stamp"}, {"$ref": "#/$defs/function"}]
  },
  "slotLine": {
    "description": "A line of pciinfo slots --format jsonl.",
    "allOf": [{"$ref": "#/$defs/stamp"}, {"$ref": "#/$defs/slot"}]
  }
})";

}  // namespace pciinfo
