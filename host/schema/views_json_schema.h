#pragma once

namespace pciinfo {

/// The definitions of the JSON Schema for what `devices`, `tree` and `show` print with `--format
/// json`, a JSON object.
inline constexpr const char* kViewsJsonSchema = R"({
  "devices": {
    "description": "pciinfo devices --format json",
    "type": "object",
    "required": ["functions"],
    "properties": {
      "functions": {
        "description": "By address.",
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
        "description": "The buses that no bridge leads to.",
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
      "slot": {"description": "Name of the slot that it sits in.", "type": "string"},
      "secondaryBus": {"type": "integer", "minimum": 0, "maximum": 255},
      "subordinateBus": {"type": "integer", "minimum": 0, "maximum": 255},
      "functions": {
        "description": "What is behind a bridge.",
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
        "description": "The slot, or the one that the function sits in.",
        "$ref": "#/$defs/slot"
      },
      "instance": {"$ref": "#/$defs/instance"}
    }
  }
})";

}  // namespace pciinfo
