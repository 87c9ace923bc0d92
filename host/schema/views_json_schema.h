// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace pciinfo {

/// The definitions of the JSON Schema for the output of the overview, `devices`, `tree` and `show`
/// with `--format json`, as a JSON object.
inline constexpr const char* kViewsJsonSchema = R"({
  "overview": {
    "description": "pciinfo --format json",
    "allOf": [{"$ref": "#/$defs/machineDocument"}],
    "not": {"required": ["version"]}
  },
  "machineDocument": {
    "description": "The overview of a machine.",
    "allOf": [{"$ref": "#/$defs/places"}],
    "required": ["system", "machine", "counts", "notRead"],
    "properties": {
      "system": {"description": "The name of the system.", "type": "string"},
      "filter": {"description": "As the user wrote it; missing if there is none.", "type": "string"},
      "machine": {
        "type": "object",
        "properties": {
          "maker": {"type": "string"},
          "product": {"type": "string"},
          "boardMaker": {"type": "string"},
          "boardProduct": {"type": "string"},
          "boardVersion": {"type": "string"},
          "biosMaker": {"type": "string"},
          "biosVersion": {"type": "string"},
          "biosDate": {"type": "string"}
        }
      },
      "counts": {
        "type": "object",
        "required": ["functions", "bridges", "slots", "inUse", "matched"],
        "properties": {
          "functions": {"type": "integer", "minimum": 0},
          "bridges": {"description": "Of the functions.", "type": "integer", "minimum": 0},
          "slots": {"description": "With a name.", "type": "integer", "minimum": 0},
          "inUse": {"description": "Of the slots.", "type": "integer", "minimum": 0},
          "matched": {"description": "Slots with known functions.", "type": "integer", "minimum": 0}
        }
      },
      "notRead": {
        "description": "What could not be read, and why.",
        "type": "array",
        "items": {"type": "string"}
      }
    }
  },
  "devices": {
    "description": "pciinfo devices --format json",
    "type": "object",
    "required": ["functions"],
    "not": {"required": ["system"]},
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
          "required": ["domain", "bus", "functions"],
          "properties": {
            "domain": {"type": "integer", "minimum": 0},
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
      "slots": {
        "description": "Names of the slots to which the port leads.",
        "type": "array",
        "items": {"type": "string"}
      },
      "narrowLink": {
        "description": "How the link is narrower than both of its ends allow.",
        "type": "string",
        "pattern": "^x[0-9]+ of x[0-9]+$"
      },
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
    "oneOf": [{"required": ["function"]}, {"required": ["slot"]}, {"required": ["instance"]}],
    "properties": {
      "function": {"$ref": "#/$defs/function"},
      "details": {
        "description": "More about the function.",
        "$ref": "#/$defs/instance"
      },
      "slot": {"$ref": "#/$defs/slot"},
      "instance": {
        "description": "What an object path names.",
        "$ref": "#/$defs/instance"
      }
    }
  }
})";

}  // namespace pciinfo
