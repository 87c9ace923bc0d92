// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace pciinfo {

/// The definitions of the JSON Schema for `pciinfo diff --format json`, as a JSON object.
inline constexpr const char* kDiffJsonSchema = R"({
  "diff": {
    "description": "pciinfo diff --format json",
    "oneOf": [{"$ref": "#/$defs/machineDiff"}, {"$ref": "#/$defs/instanceDiff"}]
  },
  "diffSides": {
    "type": "object",
    "required": ["before", "after", "compared", "ignored", "changes"],
    "properties": {
      "before": {"description": "The sides as the user named them.", "type": "string"},
      "after": {"type": "string"},
      "ignored": {
        "description": "The properties that were not compared on request.",
        "type": "array",
        "items": {"type": "string"}
      },
      "changes": {"type": "array"}
    }
  },
  "machineDiff": {
    "allOf": [{"$ref": "#/$defs/diffSides"}],
    "required": ["notCompared"],
    "properties": {
      "compared": {"const": "machines"},
      "notCompared": {
        "description": "What one side tells and the other does not.",
        "type": "array",
        "items": {
          "type": "object",
          "required": ["unknownIn", "property", "text"],
          "properties": {
            "unknownIn": {"enum": ["before", "after"]},
            "property": {"type": "string"},
            "text": {"type": "string"},
            "because": {"type": "string"}
          }
        }
      },
      "changes": {"items": {"$ref": "#/$defs/machineChange"}}
    }
  },
  "machineChange": {
    "type": "object",
    "required": ["op", "subject", "label", "text"],
    "properties": {
      "op": {"enum": ["add", "remove", "move", "replace"]},
      "subject": {"enum": ["machine", "buses", "slot", "function"]},
      "label": {"description": "What the objects are, for people.", "type": "string"},
      "functions": {
        "description": "The functions that changed in this way.",
        "type": "array",
        "items": {"$ref": "#/$defs/address"},
        "minItems": 1
      },
      "formerFunctions": {
        "description": "Their old addresses, if those are others.",
        "type": "array",
        "items": {"$ref": "#/$defs/address"}
      },
      "slots": {
        "description": "Names of the slots that changed in this way.",
        "type": "array",
        "items": {"type": "string"},
        "minItems": 1
      },
      "property": {"type": "string"},
      "old": {"type": ["string", "null"]},
      "new": {"type": ["string", "null"]},
      "text": {"description": "The change in words.", "type": "string"}
    },
    "dependentRequired": {"property": ["old", "new"]}
  },
  "instanceDiff": {
    "allOf": [{"$ref": "#/$defs/diffSides"}],
    "required": ["onlyBefore", "onlyAfter"],
    "properties": {
      "compared": {"const": "instances"},
      "onlyBefore": {
        "description": "Classes that only one side has, which are not compared.",
        "type": "array",
        "items": {"type": "string"}
      },
      "onlyAfter": {"type": "array", "items": {"type": "string"}},
      "changes": {"items": {"$ref": "#/$defs/instanceChange"}}
    }
  },
  "instanceChange": {
    "type": "object",
    "required": ["op", "subject", "label", "text"],
    "properties": {
      "op": {"enum": ["add", "remove", "move", "replace"]},
      "subject": {
        "enum": ["function", "slot", "board", "listing", "association", "system", "instance"]
      },
      "label": {"type": "string"},
      "from": {"description": "Path of the old instance.", "type": "string"},
      "path": {"description": "Path of the new instance.", "type": "string"},
      "instance": {
        "description": "The added or removed instance.",
        "$ref": "#/$defs/instance"
      },
      "property": {"type": "string"},
      "old": {"description": "The value as in instances."},
      "new": {},
      "text": {"type": "string"}
    },
    "dependentRequired": {"property": ["old", "new"]}
  }
})";

}  // namespace pciinfo
