// SPDX-License-Identifier: Apache-2.0
#include "host/machine/machine_model.h"

#include <algorithm>
#include <map>
#include <unordered_map>

#include "host/machine/property_reader.h"

namespace pciinfo {
namespace {

using IndexByPath = std::map<std::string, std::size_t, std::less<>>;

constexpr const char* kFunctionClass = "VTQ_PCIFunction";
constexpr const char* kSlotClass = "VTQ_PCISlot";
constexpr const char* kFunctionInSlotClass = "VTQ_PCIFunctionInSlot";
constexpr const char* kSharedPortClass = "VTQ_PCISharedPort";

/// Calls `visit` for every instance of a class, if the class is declared.
template <class Visit>
void ForEach(const vtq::Namespace& repository, const char* className, const Visit& visit) {
  const std::shared_ptr<vtq::Class> cimClass = repository.Find(className);
  if (cimClass == nullptr) return;
  const PropertyReader reader(*cimClass);
  for (const auto& instance : cimClass->GetInstances()) visit(reader, *instance);
}

FunctionPlace PlaceOf(const std::string& text) {
  if (text == "slot") return FunctionPlace::kSlot;
  if (text == "one of several slots") return FunctionPlace::kSharedPort;
  if (text == "slot without a name") return FunctionPlace::kUnnamedSlot;
  return text == "on board" ? FunctionPlace::kOnBoard : FunctionPlace::kUnknown;
}

SlotState StateOf(const std::string& text) {
  if (text == "occupied") return SlotState::kOccupied;
  return text == "empty" ? SlotState::kEmpty : SlotState::kUnknown;
}

/// Fills in structures with the properties of one instance.
class Fields {
 public:
  Fields(const PropertyReader& reader, const vtq::Instance& instance)
      : reader_(reader), instance_(instance) {}

  void Get(std::string& field, const char* property) { field = reader_.Text(instance_, property); }
  void Get(std::optional<unsigned>& field, const char* property) {
    field = reader_.Number(instance_, property);
  }
  void Get(std::optional<bool>& field, const char* property) {
    field = reader_.Boolean(instance_, property);
  }
  void Get(std::vector<std::string>& field, const char* property) {
    field = reader_.Texts(instance_, property);
  }
  void Get(std::optional<int>& field, const char* property) {
    if (const auto number = reader_.SignedNumber(instance_, property)) {
      field = static_cast<int>(*number);
    }
  }
  void Get(std::optional<DomainAddress>& field, const char* property) {
    field = ParseDomainAddress(reader_.Text(instance_, property));
  }

 private:
  const PropertyReader& reader_;
  const vtq::Instance& instance_;
};

void GetLink(Fields& fields, Link& link) {
  fields.Get(link.width, "LinkWidth");
  fields.Get(link.speed, "LinkSpeed");
  fields.Get(link.maxWidth, "MaxLinkWidth");
  fields.Get(link.maxSpeed, "MaxLinkSpeed");
}

void GetIdentity(Fields& fields, MachineFunction& function) {
  fields.Get(function.vendorId, "VendorID");
  fields.Get(function.deviceId, "DeviceID");
  fields.Get(function.subsystemVendorId, "SubsystemVendorID");
  fields.Get(function.subsystemId, "SubsystemID");
  fields.Get(function.baseClass, "BaseClass");
  fields.Get(function.subclass, "Subclass");
  fields.Get(function.programmingInterface, "ProgrammingInterface");
  fields.Get(function.revision, "Revision");
  fields.Get(function.vendorName, "VendorName");
  fields.Get(function.deviceName, "DeviceName");
  fields.Get(function.subsystemVendorName, "SubsystemVendorName");
  fields.Get(function.subsystemName, "SubsystemName");
  fields.Get(function.className, "ClassName");
  fields.Get(function.programmingInterfaceName, "ProgrammingInterfaceName");
}

void GetPosition(Fields& fields, MachineFunction& function) {
  fields.Get(function.headerType, "HeaderType");
  fields.Get(function.portType, "PortType");
  fields.Get(function.parentPort, "ParentPort");
  std::optional<unsigned> secondary;
  std::optional<unsigned> subordinate;
  fields.Get(secondary, "SecondaryBus");
  fields.Get(subordinate, "SubordinateBus");
  if (secondary && subordinate) function.buses = BridgeBuses{*secondary, *subordinate};
  std::string place;
  fields.Get(place, "Place");
  function.place = PlaceOf(place);
  fields.Get(function.placeReason, "PlaceReason");
}

MachineFunction ReadMachineFunction(Fields fields, const DomainAddress& address) {
  MachineFunction function;
  function.address = address;
  GetIdentity(fields, function);
  GetPosition(fields, function);
  GetLink(fields, function.link);
  fields.Get(function.driver, "Driver");
  fields.Get(function.numaNode, "NumaNode");
  fields.Get(function.physicalFunction, "PhysicalFunction");
  return function;
}

void GetRecord(Fields& fields, MachineSlot& slot) {
  fields.Get(slot.recordHandle, "RecordHandle");
  fields.Get(slot.id, "SlotID");
  fields.Get(slot.type, "SlotType");
  fields.Get(slot.width, "SlotDataBusWidth");
  fields.Get(slot.length, "SlotLength");
  fields.Get(slot.usage, "FirmwareUsage");
  fields.Get(slot.hotPlug, "SupportsHotPlug");
  fields.Get(slot.firmwareAddress, "FirmwareAddress");
  fields.Get(slot.peerAddresses, "PeerAddresses");
}

MachineSlot ReadMachineSlot(Fields fields) {
  MachineSlot slot;
  fields.Get(slot.name, "Name");
  fields.Get(slot.source, "Source");
  std::string state;
  fields.Get(state, "State");
  slot.state = StateOf(state);
  GetRecord(fields, slot);
  fields.Get(slot.kernelSlot, "KernelSlot");
  fields.Get(slot.ports, "Leads");
  fields.Get(slot.noPortBecause, "LeadsNowhereBecause");
  fields.Get(slot.numaNode, "NumaNode");
  GetLink(fields, slot.link);
  fields.Get(slot.physicalNumber, "PhysicalSlotNumber");
  fields.Get(slot.portHotPlug, "PortHotPlug");
  fields.Get(slot.surpriseRemoval, "PortSurpriseRemoval");
  fields.Get(slot.cardPresent, "PortCardPresent");
  fields.Get(slot.powerOn, "PowerOn");
  fields.Get(slot.powerFault, "PowerFault");
  fields.Get(slot.outerSlot, "OuterSlot");
  fields.Get(slot.conflicts, "Conflicts");
  return slot;
}

/// Reads the classes in turn; later ones refer to earlier ones.
class MachineReader {
 public:
  explicit MachineReader(const vtq::Namespace& repository) : repository_(repository) {}

  MachineModel Read() {
    ReadFunctionInstances();
    ReadSlotInstances();
    ReadOccupants();
    ReadShared();
    model_.LinkParts();
    return std::move(model_);
  }

 private:
  void ReadFunctionInstances() {
    std::vector<std::pair<std::string, MachineFunction>> found;
    ForEach(repository_, kFunctionClass, [&](const auto& reader, const auto& instance) {
      const auto address = ParseDomainAddress(reader.Text(instance, "Address"));
      if (!address) return;
      found.emplace_back(instance.GetPath(), ReadMachineFunction({reader, instance}, *address));
    });
    std::stable_sort(found.begin(), found.end(), [](const auto& left, const auto& right) {
      return left.second.address < right.second.address;
    });
    for (auto& [path, function] : found) {
      functionByPath_.emplace(std::move(path), model_.functions.size());
      model_.functions.push_back(std::move(function));
    }
  }

  void ReadSlotInstances() {
    ForEach(repository_, kSlotClass, [&](const auto& reader, const auto& instance) {
      slotByPath_.emplace(instance.GetPath(), model_.slots.size());
      model_.slots.push_back(ReadMachineSlot({reader, instance}));
    });
  }

  void ReadOccupants() {
    ForEach(repository_, kFunctionInSlotClass, [&](const auto& reader, const auto& instance) {
      const auto slot = slotByPath_.find(reader.Path(instance, "Antecedent"));
      const auto function = functionByPath_.find(reader.Path(instance, "Dependent"));
      if (slot == slotByPath_.end() || function == functionByPath_.end()) return;
      MachineFunction& occupant = model_.functions[function->second];
      occupant.slot = slot->second;
      occupant.certainty = reader.Text(instance, "Certainty");
      occupant.evidence = reader.Text(instance, "Evidence");
      model_.slots[slot->second].functions.push_back(function->second);
    });
    for (MachineSlot& slot : model_.slots) std::sort(slot.functions.begin(), slot.functions.end());
  }

  void ReadShared() {
    ForEach(repository_, kSharedPortClass, [&](const auto& reader, const auto& instance) {
      SharedPort shared;
      shared.port = reader.Text(instance, "Port");
      shared.slots = reader.Texts(instance, "Slots");
      shared.evidence = reader.Text(instance, "Evidence");
      for (const std::string& text : reader.Texts(instance, "Functions")) {
        const auto address = ParseDomainAddress(text);
        const MachineFunction* function = address ? model_.Find(*address) : nullptr;
        if (function == nullptr) continue;
        shared.functions.push_back(static_cast<std::size_t>(function - model_.functions.data()));
      }
      model_.shared.push_back(std::move(shared));
    });
  }

  const vtq::Namespace& repository_;
  MachineModel model_;
  IndexByPath functionByPath_;
  IndexByPath slotByPath_;
};

}  // namespace

bool MachineFunction::IsBridge() const {
  return headerType == 1U || headerType == 2U || baseClass == 0x06U;
}

void MachineModel::LinkParts() {
  std::unordered_map<std::string, std::size_t> slotByName;
  for (std::size_t place = 0; place < slots.size(); ++place) {
    slots[place].innerSlots.clear();
    slots[place].sharedPort.reset();
    slotByName.emplace(slots[place].name, place);
  }
  for (std::size_t place = 0; place < slots.size(); ++place) {
    const auto outer = slotByName.find(slots[place].outerSlot);
    const bool isInner = !slots[place].outerSlot.empty() && outer != slotByName.end();
    if (isInner) slots[outer->second].innerSlots.push_back(place);
  }
  for (MachineFunction& function : functions) function.sharedPort.reset();
  for (std::size_t place = 0; place < shared.size(); ++place) {
    for (const std::size_t function : shared[place].functions) {
      functions[function].sharedPort = place;
    }
    shared[place].slotPlaces.clear();
    for (const std::string& name : shared[place].slots) {
      const auto slot = slotByName.find(name);
      if (slot == slotByName.end()) continue;
      shared[place].slotPlaces.push_back(slot->second);
      slots[slot->second].sharedPort = place;
    }
  }
}

const MachineFunction* MachineModel::Find(const DomainAddress& address) const {
  const auto found = std::lower_bound(functions.begin(), functions.end(), address,
                                      [](const MachineFunction& function, const auto& wanted) {
                                        return function.address < wanted;
                                      });
  return found == functions.end() || found->address != address ? nullptr : &*found;
}

bool MachineModel::HasDomains() const {
  return !functions.empty() && functions.back().address.domain != 0;
}

std::vector<const MachineFunction*> MachineModel::FunctionsAt(FunctionPlace place) const {
  std::vector<const MachineFunction*> found;
  for (const MachineFunction& function : functions) {
    if (function.place == place) found.push_back(&function);
  }
  return found;
}

std::vector<const MachineFunction*> MachineModel::FunctionsOf(
    const std::vector<std::size_t>& places) const {
  std::vector<const MachineFunction*> found;
  found.reserve(places.size());
  for (const std::size_t place : places) found.push_back(&functions[place]);
  return found;
}

std::vector<std::string> MachineClasses() {
  return {kFunctionClass, kSlotClass, kFunctionInSlotClass, kSharedPortClass};
}

MachineModel ReadMachine(const vtq::Namespace& repository) {
  return MachineReader(repository).Read();
}

}  // namespace pciinfo
