// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace pciinfo {

/// The definitions of the JSON Schema for the output of `check --format json`, as a JSON object.
inline constexpr const char* kCheckJsonSchema = R"({
  "check": {
    "description": "pciinfo check --format json",
    "type": "object",
    "required": ["findings"],
    "not": {"required": ["system"]},
    "properties": {
      "findings": {"type": "array", "items": {"$ref": "#/$defs/finding"}}
    }
  },
  "finding": {
    "type": "object",
    "required": ["code", "severity", "what", "advice", "objects"],
    "properties": {
      "code": {"type": "string", "pattern": "^[a-z]+(-[a-z]+)*$"},
      "severity": {"enum": ["note", "warning", "error"]},
      "what": {"type": "string"},
      "advice": {"type": "string"},
      "objects": {
        "description": "What the finding is about.",
        "type": "array",
        "minItems": 1,
        "items": {"$ref": "#/$defs/affectedObject"}
      }
    }
  },
  "affectedObject": {
    "type": "object",
    "required": ["object"],
    "properties": {
      "object": {
        "description": "Address of a function, name or tag of a slot, a file or a program.",
        "type": "string"
      },
      "kind": {"description": "Not with --classes.", "enum": ["function", "slot"]},
      "name": {"description": "What the function is, for people.", "type": "string"},
      "path": {"description": "Object path, with --classes.", "type": "string"},
      "detail": {"type": "string"}
    },
    "if": {"required": ["kind"], "properties": {"kind": {"const": "function"}}},
    "then": {"properties": {"object": {"$ref": "#/$defs/address"}}}
  }
})";

}  // namespace pciinfo
