#include "host/schema/pci_schema.h"

#include <utility>

#include "host/model/smbios_names.h"

namespace pciinfo {
namespace {

using enum NQZMVTQ20::TCIMValue::TCIMType::ECIMType;

enum Shape { kScalar, kArray };
enum Role { kKey, kPlain };

/// Attributes that only few properties have.
struct Extra {
  std::vector<std::string> targets = {};
  std::vector<vtq::NamedValue> (*values)() = nullptr;
  const char* overrides = "";
  const char* commonTarget = "";
};

struct PropertyRow {
  const char* name;
  NQZMVTQ20::TCIMValue::TCIMType::ECIMType type;
  Shape shape;
  Role role;
  const char* description;
  Extra extra = {};
};

Extra Coded(std::vector<vtq::NamedValue> (*values)()) { return {{}, values}; }

Extra Overriding(const char* property) { return {{}, nullptr, property}; }

/// Makes a reference property that overrides the superclass's with fewer target classes.
Extra Joining(const char* overridden, std::vector<std::string> targets, const char* common = "") {
  return {std::move(targets), nullptr, overridden, common};
}

using Rows = std::vector<PropertyRow>;

// CIM_ManagedSystemElement.OperationalStatus of the DMTF schema.
std::vector<vtq::NamedValue> OperationalStates() {
  return {{0, "Unknown"},
          {1, "Other"},
          {2, "OK"},
          {3, "Degraded"},
          {4, "Stressed"},
          {5, "Predictive Failure"},
          {6, "Error"},
          {7, "Non-Recoverable Error"},
          {8, "Starting"},
          {9, "Stopping"},
          {10, "Stopped"},
          {11, "In Service"},
          {12, "No Contact"},
          {13, "Lost Communication"},
          {14, "Aborted"},
          {15, "Dormant"},
          {16, "Supporting Entity in Error"},
          {17, "Completed"},
          {18, "Power Mode"},
          {19, "Relocating"}};
}

// CIM_Slot.VccMixedVoltageSupport of the DMTF schema.
std::vector<vtq::NamedValue> Voltages() {
  return {{0, "Unknown"}, {1, "Other"}, {2, "3.3V"}, {3, "5V"}};
}

// The DMTF schema names a value that SMBIOS does not define.
std::vector<vtq::NamedValue> Usages() {
  std::vector<vtq::NamedValue> usages = SlotUsages();
  usages.insert(usages.begin(), {0, "Reserved"});
  return usages;
}

// The codes below are those of DSP0134 (SMBIOS) and of the DMTF schema.

const Rows kSystemKeys = {
    {"SystemCreationClassName", kString, kScalar, kKey, "Class of the computer system."},
    {"SystemName", kString, kScalar, kKey, "Name of the computer system."},
    {"CreationClassName", kString, kScalar, kKey, "Class that the instance was made as."},
    {"DeviceID", kString, kScalar, kKey, "Name of the device within its system."},
};

const Rows kPciFunctionRows = {
    {"VendorID", kUint16, kScalar, kPlain, "PCI vendor identifier."},
    // CIM names are not case-sensitive: this is the superclass's property, spelled differently.
    {"PciDeviceID", kUint16, kScalar, kPlain, "PCI device identifier.", Overriding("PCIDeviceID")},
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
    {"CurrentUsage", kUint16, kScalar, kPlain, "Usage: SMBIOS code, DSP0134 7.10.3.",
     Coded(&Usages)},
    {"SlotLength", kUint8, kScalar, kPlain, "Length: SMBIOS code, DSP0134 7.10.4.",
     Coded(&SlotLengths)},
    {"OperationalStatus", kUint16, kArray, kPlain, "DMTF status: 0 unknown, 1 other, 2 OK.",
     Coded(&OperationalStates)},
    {"StatusDescriptions", kString, kArray, kPlain, "The usage in words."},
    {"ConnectorType", kUint16, kArray, kPlain,
     "Slot type: the raw SMBIOS code of DSP0134 7.10.1, not the DMTF value.",
     Coded(&ConnectorTypes)},
    {"MaxDataWidth", kUint16, kScalar, kPlain,
     "Data bus width: the raw SMBIOS code of DSP0134 7.10.2, neither bits nor the DMTF value.",
     Coded(&SlotWidths)},
    {"PMESignal", kBoolean, kScalar, kPlain, "Supports the power management event signal."},
    {"Shared", kBoolean, kScalar, kPlain, "The opening is shared with another slot."},
    {"SlotDesignation", kString, kScalar, kPlain, "Label of the slot on the board."},
    {"SlotAllInfo", kString, kScalar, kPlain, "Designation and tag."},
    {"SupportsHotPlug", kBoolean, kScalar, kPlain, "Supports hot-plug devices."},
    {"VccMixedVoltageSupport", kUint16, kArray, kPlain,
     "Voltages that the slot provides: 0 unknown, 1 other, 2 3.3 V, 3 5 V.", Coded(&Voltages)},
};

const Rows kBoardRows = {
    {"ElementName", kString, kScalar, kPlain, "Name of the board."},
    {"SlotDesignation", kString, kScalar, kPlain, "\"Onboard\"."},
    {"SlotAllInfo", kString, kScalar, kPlain, "\"Onboard\"."},
};

const Rows kSlotAntecedent = {
    {"Antecedent", kReference, kScalar, kKey, "The slot.",
     Joining("Antecedent", {"QZMSG_SystemSlot"})},
};

const Rows kBoardAntecedent = {
    {"Antecedent", kReference, kScalar, kKey, "The board.",
     Joining("Antecedent", {"QZMSG_SystemBoard"})},
};

const Rows kPciDependent = {
    {"Dependent", kReference, kScalar, kKey, "The PCI function.",
     Joining("Dependent", {"QZMSG_PCIDevice", "QZMSG_PCIBridge"}, "CIM_LogicalDevice")},
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
  const Extra& extra = row.extra;
  return {row.name,
          NQZMVTQ20::TCIMValue::TCIMType(row.type),
          row.shape == kArray,
          row.role == kKey,
          extra.targets,
          row.description,
          extra.values == nullptr ? std::vector<vtq::NamedValue>() : extra.values(),
          extra.overrides,
          extra.commonTarget};
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
