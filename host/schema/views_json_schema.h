// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace pciinfo {

/// The definitions of the JSON Schema for the output of `devices`, `tree` and `show` with `--format
/// json`, as a JSON object.
inline constexpr const char* kViewsJsonSchema = R"({
  "devices": {
    "description": "pciinfo devices --format json",
    "type": "object",
    "required": ["functions"],
    "properties": {
      "functions": {
        "description": "Sorted by address.",
        "type": "array",
        "items": {"$ref": "#/$defs/function"}
      }
    }
  },
  "tree": {
    "description": "pciinfo tree --format json",
    "type": "object",
    "required": ["buses"],
    "properties": {
      "buses": {
        "description": "The buses that are not behind any bridge.",
        "type": "array",
        "items": {
          "type": "object",
          "required": ["functions"],
          "properties": {
            "bus": {"type": "integer", "minimum": 0, "maximum": 255},
            "functions": {"type": "array", "items": {"$ref": "#/$defs/treeFunction"}}
          }
        }
      }
    }
  },
  "treeFunction": {
    "allOf": [{"$ref": "#/$defs/function"}],
    "properties": {
      "slot": {"description": "Name of the slot that holds the function.", "type": "string"},
      "secondaryBus": {"type": "integer", "minimum": 0, "maximum": 255},
      "subordinateBus": {"type": "integer", "minimum": 0, "maximum": 255},
      "functions": {
        "description": "The functions behind the bridge.",
        "type": "array",
        "items": {"$ref": "#/$defs/treeFunction"}
      }
    }
  },
  "shown": {
    "description": "pciinfo show NAME --format json",
    "type": "object",
    "required": ["instance"],
    "properties": {
      "function": {"$ref": "#/$defs/function"},
      "slot": {
        "description": "The slot itself, or the slot that holds the function.",
        "$ref": "#/$defs/slot"
      },
      "instance": {"$ref": "#/$defs/instance"}
    }
  }
})";

}  // namespace pciinfo
