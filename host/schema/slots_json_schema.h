// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace pciinfo {

/// The definitions of the JSON Schema for `pciinfo slots --format json`, as a JSON object.
inline constexpr const char* kSlotsJsonSchema = R"({
  "slots": {
    "description": "pciinfo slots --format json",
    "allOf": [{"$ref": "#/$defs/places"}],
    "not": {"required": ["counts"]}
  },
  "places": {
    "description": "The slots, and where the functions are.",
    "type": "object",
    "required": ["slots", "shared", "onBoard", "unnamed", "unknown", "conflicts"],
    "properties": {
      "slots": {
        "description": "The slots that firmware or kernel name.",
        "type": "array",
        "items": {"$ref": "#/$defs/slot"}
      },
      "shared": {
        "description": "Ports that the firmware gives to several slots.",
        "type": "array",
        "items": {"$ref": "#/$defs/sharedPort"}
      },
      "onBoard": {
        "description": "The functions that are known to be on the board.",
        "type": "array",
        "items": {"$ref": "#/$defs/function"}
      },
      "unnamed": {
        "description": "Slots that only a port tells of.",
        "type": "array",
        "items": {"$ref": "#/$defs/slot"}
      },
      "unknown": {
        "description": "The functions of which the place is unknown.",
        "type": "array",
        "items": {"$ref": "#/$defs/function"}
      },
      "conflicts": {
        "description": "Where the sources contradict each other.",
        "type": "array",
        "items": {
          "type": "object",
          "required": ["slot", "text"],
          "properties": {"slot": {"type": "string"}, "text": {"type": "string"}}
        }
      }
    }
  },
  "slot": {
    "type": "object",
    "required": ["name", "state", "ports", "functions"],
    "properties": {
      "name": {"description": "Unique in the machine.", "type": "string"},
      "designation": {"description": "The firmware's name.", "type": "string"},
      "source": {"enum": ["SMBIOS record", "kernel slot", "ACPI", "port"]},
      "state": {"enum": ["occupied", "empty", "unknown"]},
      "type": {"description": "DSP0134 7.10.1.", "$ref": "#/$defs/code"},
      "width": {"description": "DSP0134 7.10.2.", "$ref": "#/$defs/code"},
      "length": {"description": "DSP0134 7.10.4.", "$ref": "#/$defs/code"},
      "usage": {"description": "What the firmware says, DSP0134 7.10.3.", "$ref": "#/$defs/code"},
      "id": {"description": "The slot ID.", "type": "integer", "minimum": 0, "maximum": 65535},
      "recordHandle": {"type": "integer", "minimum": 0, "maximum": 65535},
      "hotPlug": {"type": "boolean"},
      "firmwareAddress": {"$ref": "#/$defs/address"},
      "peerAddresses": {"type": "array", "items": {"$ref": "#/$defs/address"}},
      "kernelSlot": {"type": "string"},
      "ports": {
        "description": "The ports that lead to the slot.",
        "type": "array",
        "items": {"$ref": "#/$defs/address"}
      },
      "noPortBecause": {"description": "Why no port is known.", "type": "string"},
      "physicalNumber": {"type": "integer", "minimum": 0, "maximum": 65535},
      "portHotPlug": {"type": "boolean"},
      "surpriseRemoval": {"type": "boolean"},
      "cardPresent": {"type": "boolean"},
      "link": {"$ref": "#/$defs/link"},
      "numaNode": {"type": "integer"},
      "outerSlot": {"description": "The slot that holds this one.", "type": "string"},
      "conflicts": {"type": "array", "items": {"type": "string"}},
      "functions": {"type": "array", "items": {"$ref": "#/$defs/function"}}
    }
  },
  "sharedPort": {
    "type": "object",
    "required": ["port", "slots", "functions"],
    "properties": {
      "port": {"$ref": "#/$defs/address"},
      "slots": {"description": "Their names.", "type": "array", "items": {"type": "string"}},
      "evidence": {"type": "string"},
      "functions": {
        "description": "The functions that sit in one of the slots.",
        "type": "array",
        "items": {"$ref": "#/$defs/function"}
      }
    }
  },
  "address": {
    "description": "Domain, bus, device and function.",
    "type": "string",
    "pattern": "^[0-9a-f]{4,}:[0-9a-f]{2}:[0-9a-f]{2}\\.[0-7]$"
  },
  "ids": {
    "description": "Vendor and device in hexadecimal.",
    "type": "string",
    "pattern": "^([0-9a-f]{4}|\\?{4}):([0-9a-f]{4}|\\?{4})$"
  },
  "link": {
    "description": "A link now, and at most; a width that is not there is unknown, or the link is down.",
    "type": "object",
    "properties": {
      "width": {"type": "integer", "minimum": 0, "maximum": 255},
      "speed": {"type": "string"},
      "maxWidth": {"type": "integer", "minimum": 0, "maximum": 255},
      "maxSpeed": {"type": "string"}
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
    "description": "A PCI function, and where it is.",
    "type": "object",
    "required": ["address", "kind", "name", "id", "place"],
    "properties": {
      "address": {"$ref": "#/$defs/address"},
      "kind": {"enum": ["device", "bridge"]},
      "name": {"description": "What it is, for people.", "type": "string"},
      "vendor": {"type": "string"},
      "device": {"type": "string"},
      "subsystemVendor": {"type": "string"},
      "subsystemDevice": {"type": "string"},
      "id": {"$ref": "#/$defs/ids"},
      "vendorID": {"type": "integer", "minimum": 0, "maximum": 65535},
      "deviceID": {"type": "integer", "minimum": 0, "maximum": 65535},
      "subsystem": {"$ref": "#/$defs/ids"},
      "subsystemVendorID": {"type": "integer", "minimum": 0, "maximum": 65535},
      "subsystemID": {"type": "integer", "minimum": 0, "maximum": 65535},
      "revision": {"type": "integer", "minimum": 0, "maximum": 255},
      "class": {"$ref": "#/$defs/classCode"},
      "portType": {"type": "string"},
      "parentPort": {"$ref": "#/$defs/address"},
      "secondaryBus": {"type": "integer", "minimum": 0, "maximum": 255},
      "subordinateBus": {"type": "integer", "minimum": 0, "maximum": 255},
      "link": {"$ref": "#/$defs/link"},
      "driver": {"type": "string"},
      "numaNode": {"type": "integer"},
      "physicalFunction": {"$ref": "#/$defs/address"},
      "place": {
        "enum": ["slot", "one of several slots", "slot without a name", "on board", "unknown"]
      },
      "placeReason": {"type": "string"},
      "slot": {"description": "Name of the slot that holds the function.", "type": "string"},
      "certainty": {"enum": ["certain", "likely"]},
      "evidence": {"description": "Why it is said to be in the slot.", "type": "string"},
      "serialNumber": {
        "description": "Of the device (PCI Express 7.9.3). This and the next only in lines of machines.",
        "type": "string"
      },
      "productName": {"description": "Of the vital product data.", "type": "string"},
      "partNumber": {"description": "Likewise.", "type": "string"},
      "productSerialNumber": {"description": "Likewise.", "type": "string"},
      "systemDevices": {
        "description": "What the system knows the function as.",
        "type": "array",
        "items": {"$ref": "#/$defs/systemDevice"}
      }
    }
  },
  "systemDevice": {
    "type": "object",
    "required": ["kind", "name"],
    "properties": {
      "kind": {"enum": ["network", "block", "nvme", "drm", "infiniband", "scsi"]},
      "name": {"type": "string"},
      "hardwareAddress": {"description": "Of a network interface.", "type": "string"},
      "model": {"description": "Of an NVMe controller.", "type": "string"},
      "serialNumber": {"description": "Of an NVMe controller.", "type": "string"},
      "firmware": {"description": "Of an NVMe controller or InfiniBand device.", "type": "string"}
    }
  }
})";

}  // namespace pciinfo
