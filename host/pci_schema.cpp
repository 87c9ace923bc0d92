#include "host/pci_schema.h"

namespace pciinfo {
namespace {

using enum NQZMVTQ20::TCIMValue::TCIMType::ECIMType;

enum Shape { kScalar, kArray };
enum Role { kKey, kPlain };

struct PropertyRow {
  const char* name;
  NQZMVTQ20::TCIMValue::TCIMType::ECIMType type;
  Shape shape;
  Role role;
  const char* description;
  std::vector<std::string> targets = {};
};

using Rows = std::vector<PropertyRow>;

// The value codes named below are those of DSP0134 (SMBIOS) and of the DMTF schema.

const Rows kSystemKeys = {
    {"SystemCreationClassName", kString, kScalar, kKey, "Class of the computer system."},
    {"SystemName", kString, kScalar, kKey, "Name of the computer system."},
    {"CreationClassName", kString, kScalar, kKey, "Class that the instance was made as."},
    {"DeviceID", kString, kScalar, kKey, "Name of the device within its system."},
};

const Rows kPciFunctionRows = {
    {"VendorID", kUint16, kScalar, kPlain, "PCI vendor identifier."},
    {"PciDeviceID", kUint16, kScalar, kPlain, "PCI device identifier."},
    {"UINumber", kUint8, kScalar, kPlain, "Number of the slot that holds the function."},
    {"ClassCode", kUint8, kScalar, kPlain, "PCI base class."},
    {"Subclass", kUint8, kScalar, kPlain, "PCI subclass."},
    {"ProgrammingInterface", kUint8, kScalar, kPlain, "PCI programming interface."},
    {"Revision", kUint8, kScalar, kPlain, "PCI revision identifier."},
    {"Description", kString, kScalar, kPlain, "Kind, vendor and product in words."},
    {"Location", kString, kScalar, kPlain, "Bus, device and function number, decimal."},
};

const Rows kPciDeviceRows = {
    {"SubsystemVendorID", kUint16, kScalar, kPlain, "PCI subsystem vendor identifier."},
    {"SubsystemID", kUint16, kScalar, kPlain, "PCI subsystem identifier."},
    {"MEMAddress", kUint32, kArray, kPlain, "Base addresses of the memory regions."},
    {"MEMLength", kUint32, kArray, kPlain, "Sizes in bytes of the memory regions that have one."},
    {"IOAddress", kUint16, kArray, kPlain, "Base addresses of the I/O regions."},
    {"IOLength", kUint16, kArray, kPlain, "Sizes in bytes of the I/O regions that have one."},
    {"IRQ", kUint16, kScalar, kPlain, "Interrupt number."},
};

const Rows kSlotRows = {
    {"CreationClassName", kString, kScalar, kKey, "Class that the instance was made as."},
    {"Tag", kString, kScalar, kKey, "\"Tag \" and the running number of the slot record."},
    {"Number", kUint16, kScalar, kPlain, "Slot ID that the firmware gives."},
    {"Description", kString, kScalar, kPlain, "\"System Slot\"."},
    {"CurrentUsage", kUint16, kScalar, kPlain, "Usage: SMBIOS code, DSP0134 7.10.3."},
    {"SlotLength", kUint8, kScalar, kPlain, "Length: SMBIOS code, DSP0134 7.10.4."},
    {"OperationalStatus", kUint16, kArray, kPlain, "DMTF status: 0 unknown, 1 other, 2 OK."},
    {"StatusDescriptions", kString, kArray, kPlain, "The usage in words."},
    {"ConnectorType", kUint16, kArray, kPlain,
     "Slot type: the raw SMBIOS code of DSP0134 7.10.1, not the DMTF value."},
    {"MaxDataWidth", kUint16, kScalar, kPlain,
     "Data bus width: the raw SMBIOS code of DSP0134 7.10.2, neither bits nor the DMTF value."},
    {"PMESignal", kBoolean, kScalar, kPlain, "Supports the power management event signal."},
    {"Shared", kBoolean, kScalar, kPlain, "The opening is shared with another slot."},
    {"SlotDesignation", kString, kScalar, kPlain, "Label of the slot on the board."},
    {"SlotAllInfo", kString, kScalar, kPlain, "Designation and tag."},
    {"SupportsHotPlug", kBoolean, kScalar, kPlain, "Supports hot-plug devices."},
    {"VccMixedVoltageSupport", kUint16, kArray, kPlain,
     "Voltages that the slot provides: 0 unknown, 1 other, 2 3.3 V, 3 5 V."},
};

const Rows kBoardRows = {
    {"ElementName", kString, kScalar, kPlain, "Name of the board."},
    {"SlotDesignation", kString, kScalar, kPlain, "\"Onboard\"."},
    {"SlotAllInfo", kString, kScalar, kPlain, "\"Onboard\"."},
};

const Rows kSlotAntecedent = {
    {"Antecedent", kReference, kScalar, kKey, "The slot.", {"QZMSG_SystemSlot"}},
};

const Rows kBoardAntecedent = {
    {"Antecedent", kReference, kScalar, kKey, "The board.", {"QZMSG_SystemBoard"}},
};

const Rows kPciDependent = {
    {"Dependent",
     kReference,
     kScalar,
     kKey,
     "The PCI function.",
     {"QZMSG_PCIDevice", "QZMSG_PCIBridge"}},
};

const Rows kRawDataRows = {
    {"Command", kString, kScalar, kKey, "The listing command."},
    {"RawResult", kString, kArray, kPlain, "The command's output, line by line."},
};

struct ClassRow {
  const char* name;
  const char* superclass;
  const char* description;
  std::vector<const Rows*> properties;
};

const std::vector<ClassRow> kClasses = {
    {"QZMSG_PCIDevice",
     "CIM_PCIDevice",
     "A PCI function that is not a bridge.",
     {&kSystemKeys, &kPciFunctionRows, &kPciDeviceRows}},
    {"QZMSG_PCIBridge",
     "CIM_PCIBridge",
     "A PCI function of the base class \"bridge\".",
     {&kSystemKeys, &kPciFunctionRows}},
    {"QZMSG_SystemSlot",
     "CIM_Slot",
     "A system slot from the firmware's SMBIOS tables.",
     {&kSlotRows}},
    {"QZMSG_SystemBoard", "CIM_LogicalDevice", "The system board.", {&kSystemKeys, &kBoardRows}},
    {"QZMSG_DeviceInSlot",
     "CIM_Realizes",
     "A PCI function and the slot that holds it.",
     {&kSlotAntecedent, &kPciDependent}},
    {"QZMSG_OnBoardDevice",
     "CIM_Dependency",
     "A PCI function that sits in no slot, and the board.",
     {&kBoardAntecedent, &kPciDependent}},
    {"QZMSG_PCIRawData", "", "The output of a PCI listing command.", {&kRawDataRows}},
};

vtq::PropertySchema MakeProperty(const PropertyRow& row) {
  return {row.name,
          NQZMVTQ20::TCIMValue::TCIMType(row.type),
          row.shape == kArray,
          row.role == kKey,
          row.targets,
          row.description};
}

vtq::ClassSchema MakeClass(const ClassRow& row) {
  vtq::ClassSchema schema{row.name, row.superclass, row.description, {}};
  for (const Rows* group : row.properties) {
    for (const PropertyRow& property : *group) schema.properties.push_back(MakeProperty(property));
  }
  return schema;
}

}  // namespace

std::vector<vtq::ClassSchema> PciSchema() {
  std::vector<vtq::ClassSchema> schemas;
  schemas.reserve(kClasses.size());
  for (const ClassRow& row : kClasses) schemas.push_back(MakeClass(row));
  return schemas;
}

}  // namespace pciinfo
