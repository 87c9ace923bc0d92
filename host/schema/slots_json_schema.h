// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace pciinfo {

/// The definitions of the JSON Schema for `pciinfo slots --format json`, as a JSON object.
inline constexpr const char* kSlotsJsonSchema = R"({
  "slots": {
    "description": "pciinfo slots --format json",
    "type": "object",
    "required": ["slots", "onBoard"],
    "properties": {
      "slots": {
        "description": "Every slot record of the firmware, in firmware order.",
        "type": "array",
        "items": {"$ref": "#/$defs/slot"}
      },
      "onBoard": {
        "description": "The functions outside slots, by address.",
        "type": "array",
        "items": {"$ref": "#/$defs/function"}
      }
    }
  },
  "slot": {
    "type": "object",
    "required": ["tag", "path", "functions"],
    "properties": {
      "tag": {"type": "string"},
      "designation": {"description": "Exactly as in the firmware.", "type": "string"},
      "type": {"description": "DSP0134 7.10.1.", "$ref": "#/$defs/code"},
      "usage": {"description": "DSP0134 7.10.3.", "$ref": "#/$defs/code"},
      "width": {"description": "DSP0134 7.10.2.", "$ref": "#/$defs/code"},
      "id": {"description": "The slot ID.", "type": "integer", "minimum": 0, "maximum": 65535},
      "hotPlug": {"type": "boolean"},
      "path": {"type": "string", "pattern": "^/root/cimv2:QZMSG_SystemSlot\\."},
      "functions": {"type": "array", "items": {"$ref": "#/$defs/function"}}
    }
  },
  "code": {
    "description": "An SMBIOS code and its name.",
    "type": "object",
    "required": ["code", "text"],
    "properties": {
      "code": {"type": "integer", "minimum": 0, "maximum": 65535},
      "text": {"type": "string"}
    }
  },
  "classCode": {
    "description": "A PCI class code and its name.",
    "type": "object",
    "required": ["base", "text"],
    "properties": {
      "base": {"type": "integer", "minimum": 0, "maximum": 255},
      "subclass": {"type": "integer", "minimum": 0, "maximum": 255},
      "programmingInterface": {"type": "integer", "minimum": 0, "maximum": 255},
      "text": {"type": "string"}
    }
  },
  "function": {
    "description": "A PCI function. A function that an association names but no plug-in published has only a path and an empty description.",
    "type": "object",
    "required": ["description", "path"],
    "properties": {
      "address": {"type": "string", "pattern": "^[0-9a-f]{2}:[0-9a-f]{2}\\.[0-7]$"},
      "kind": {"enum": ["device", "bridge"]},
      "class": {"$ref": "#/$defs/classCode"},
      "vendorID": {"type": "integer", "minimum": 0, "maximum": 65535},
      "pciDeviceID": {"type": "integer", "minimum": 0, "maximum": 65535},
      "subsystemVendorID": {"type": "integer", "minimum": 0, "maximum": 65535},
      "subsystemID": {"type": "integer", "minimum": 0, "maximum": 65535},
      "revision": {"type": "integer", "minimum": 0, "maximum": 255},
      "description": {"type": "string"},
      "path": {"type": "string", "pattern": "^/root/cimv2:QZMSG_PCI(Device|Bridge)\\."}
    }
  }
})";

}  // namespace pciinfo
