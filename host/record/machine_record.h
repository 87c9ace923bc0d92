// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/machine/system_device.h"
#include "host/model/machine_identity.h"

namespace pciinfo {

/// One PCI function of a recorded machine. What is not known is empty, here and below.
struct RecordedFunction {
  std::string address;  ///< "0000:01:00.0"
  bool isBridge = false;
  std::optional<unsigned> vendorId;
  std::optional<unsigned> deviceId;
  std::optional<unsigned> subsystemVendorId;
  std::optional<unsigned> subsystemId;
  std::optional<unsigned> classCode;  ///< base class and subclass: 0x0200
  std::optional<unsigned> revision;
  std::string vendor;  ///< names of the file of IDs
  std::string device;
  std::string subsystem;
  std::string className;
  std::string portType;
  std::string parentPort;        ///< an address
  std::string physicalFunction;  ///< an address; of a virtual function
  std::optional<unsigned> linkWidth;
  std::optional<unsigned> maxLinkWidth;
  std::string linkSpeed;  ///< "8.0 GT/s"
  std::string maxLinkSpeed;
  std::string driver;
  std::optional<int> numaNode;
  std::string place;  ///< "slot", "on board", ... as in docs/formats.md
  std::string slot;   ///< name of the slot that it sits in
  std::string certainty;
  std::string evidence;      ///< why it is said to sit there
  std::string serialNumber;  ///< of the device, or of the product if only that is known
  std::string partNumber;
  std::string productName;
  std::vector<SystemDevice> systemDevices;
};

/// One slot of a recorded machine. The texts are those of SMBIOS codes, see smbios_names.h.
struct RecordedSlot {
  std::string name;
  std::string designation;
  std::string source;
  std::string state;  ///< "occupied", "empty" or "unknown"
  std::string type;
  std::string width;
  std::string length;
  std::optional<unsigned> lanes;  ///< of `width`: 16 for "x16"
  std::string usage;              ///< as the firmware says
  std::optional<unsigned> id;
  std::string firmwareAddress;
  std::vector<std::string> ports;  ///< addresses
  std::optional<unsigned> physicalNumber;
  std::optional<unsigned> maxLinkWidth;
  std::string maxLinkSpeed;
  std::optional<int> numaNode;
  std::vector<std::string> sharedWith;  ///< names of the slots that share its port
  std::vector<std::string> conflicts;
};

/// Something that `check` found, at one object.
struct RecordedFinding {
  std::string code;
  std::string severity;  ///< "error", "warning" or "note"
  std::string object;    ///< an address or the name of a slot
  std::string text;
};

/// Everything about one machine that a fleet keeps: what a machine line says.
struct MachineRecord {
  std::string name;        ///< of the system
  std::string systemUuid;  ///< of the firmware, lower case: "4c4c4544-..."
  std::string machineId;   ///< of the operating system, 32 hexadecimal digits
  std::string collected;   ///< in UTC: "2024-05-06T07:08:09Z"
  std::string version;     ///< of the program that recorded it
  MachineIdentity identity;
  std::vector<RecordedFunction> functions;  ///< sorted by address
  std::vector<RecordedSlot> slots;
  std::vector<RecordedFinding> findings;
  std::vector<std::string> troubles;  ///< what could not be collected, and why
};

/// Reads a machine line or the document of `pciinfo --format json`, which lacks some of its data.
/// Both are described in docs/formats.md. Throws UsageError, which says what is wrong, for other
/// texts, and for a machine that has no name, UUID or ID.
MachineRecord ParseRecord(const std::string& text);

}  // namespace pciinfo
