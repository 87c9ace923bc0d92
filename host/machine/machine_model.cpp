// SPDX-License-Identifier: Apache-2.0
#include "host/machine/machine_model.h"

#include <algorithm>
#include <functional>
#include <unordered_map>

#include "host/machine/property_reader.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;

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

// What a property fills in.

void Take(const TCIMValue& value, std::string& field) { field = TextIn(value); }
void Take(const TCIMValue& value, std::optional<unsigned>& field) { field = NumberIn(value); }
void Take(const TCIMValue& value, std::optional<bool>& field) { field = BooleanIn(value); }
void Take(const TCIMValue& value, std::vector<std::string>& field) { field = TextsIn(value); }
void Take(const TCIMValue& value, FunctionPlace& field) { field = PlaceOf(TextIn(value)); }
void Take(const TCIMValue& value, SlotState& field) { field = StateOf(TextIn(value)); }

void Take(const TCIMValue& value, std::optional<int>& field) {
  if (const auto number = SignedNumberIn(value)) field = static_cast<int>(*number);
}

void Take(const TCIMValue& value, std::optional<DomainAddress>& field) {
  field = ParseDomainAddress(TextIn(value));
}

/// The properties that fill in objects of one kind. Their places are found once: a machine has
/// thousands of functions, and each has dozens of properties.
template <class Object>
class FieldList {
 public:
  explicit FieldList(const PropertyReader& reader) : reader_(reader) {}

  template <class Field>
  void Add(Field Object::*field, const char* property) {
    AddStep(property,
            [field](const TCIMValue& value, Object& object) { Take(value, object.*field); });
  }
  template <class Field>
  void Add(Link Object::*link, Field Link::*field, const char* property) {
    AddStep(property, [link, field](const TCIMValue& value, Object& object) {
      Take(value, object.*link.*field);
    });
  }

  void Fill(const vtq::Instance& instance, Object& object) const {
    const vtq::InstanceValues values(instance);
    for (const auto& step : steps_) step(values, object);
  }

 private:
  template <class Step>
  void AddStep(const char* property, Step step) {
    const auto place = reader_.Place(property);
    if (!place) return;
    steps_.emplace_back([place = *place, step](const vtq::InstanceValues& values, Object& object) {
      const TCIMValue& value = values[place];
      if (!value.IsNull()) step(value, object);
    });
  }

  const PropertyReader& reader_;
  std::vector<std::function<void(const vtq::InstanceValues& values, Object& object)>> steps_;
};

/// The link of functions and of slots.
template <class Object>
void AddLink(FieldList<Object>& fields) {
  fields.Add(&Object::link, &Link::width, "LinkWidth");
  fields.Add(&Object::link, &Link::speed, "LinkSpeed");
  fields.Add(&Object::link, &Link::maxWidth, "MaxLinkWidth");
  fields.Add(&Object::link, &Link::maxSpeed, "MaxLinkSpeed");
}

void AddIdentity(FieldList<MachineFunction>& fields) {
  using Function = MachineFunction;
  fields.Add(&Function::vendorId, "VendorID");
  fields.Add(&Function::deviceId, "DeviceID");
  fields.Add(&Function::subsystemVendorId, "SubsystemVendorID");
  fields.Add(&Function::subsystemId, "SubsystemID");
  fields.Add(&Function::baseClass, "BaseClass");
  fields.Add(&Function::subclass, "Subclass");
  fields.Add(&Function::programmingInterface, "ProgrammingInterface");
  fields.Add(&Function::revision, "Revision");
  fields.Add(&Function::vendorName, "VendorName");
  fields.Add(&Function::deviceName, "DeviceName");
  fields.Add(&Function::subsystemVendorName, "SubsystemVendorName");
  fields.Add(&Function::subsystemName, "SubsystemName");
  fields.Add(&Function::className, "ClassName");
  fields.Add(&Function::programmingInterfaceName, "ProgrammingInterfaceName");
}

FieldList<MachineFunction> FunctionFields(const PropertyReader& reader) {
  using Function = MachineFunction;
  FieldList<Function> fields(reader);
  AddIdentity(fields);
  fields.Add(&Function::headerType, "HeaderType");
  fields.Add(&Function::portType, "PortType");
  fields.Add(&Function::parentPort, "ParentPort");
  fields.Add(&Function::place, "Place");
  fields.Add(&Function::placeReason, "PlaceReason");
  AddLink(fields);
  fields.Add(&Function::driver, "Driver");
  fields.Add(&Function::numaNode, "NumaNode");
  fields.Add(&Function::physicalFunction, "PhysicalFunction");
  return fields;
}

std::optional<BridgeBuses> BusesOf(const PropertyReader& reader, const vtq::Instance& instance) {
  const auto secondary = reader.Number(instance, "SecondaryBus");
  const auto subordinate = reader.Number(instance, "SubordinateBus");
  if (!secondary || !subordinate) return std::nullopt;
  return BridgeBuses{*secondary, *subordinate};
}

void AddRecord(FieldList<MachineSlot>& fields) {
  using Slot = MachineSlot;
  fields.Add(&Slot::recordHandle, "RecordHandle");
  fields.Add(&Slot::id, "SlotID");
  fields.Add(&Slot::type, "SlotType");
  fields.Add(&Slot::width, "SlotDataBusWidth");
  fields.Add(&Slot::length, "SlotLength");
  fields.Add(&Slot::usage, "FirmwareUsage");
  fields.Add(&Slot::hotPlug, "SupportsHotPlug");
  fields.Add(&Slot::firmwareAddress, "FirmwareAddress");
  fields.Add(&Slot::peerAddresses, "PeerAddresses");
}

FieldList<MachineSlot> SlotFields(const PropertyReader& reader) {
  using Slot = MachineSlot;
  FieldList<Slot> fields(reader);
  fields.Add(&Slot::name, "Name");
  fields.Add(&Slot::source, "Source");
  fields.Add(&Slot::state, "State");
  AddRecord(fields);
  fields.Add(&Slot::kernelSlot, "KernelSlot");
  fields.Add(&Slot::ports, "Leads");
  fields.Add(&Slot::noPortBecause, "LeadsNowhereBecause");
  fields.Add(&Slot::numaNode, "NumaNode");
  AddLink(fields);
  fields.Add(&Slot::physicalNumber, "PhysicalSlotNumber");
  fields.Add(&Slot::portHotPlug, "PortHotPlug");
  fields.Add(&Slot::surpriseRemoval, "PortSurpriseRemoval");
  fields.Add(&Slot::cardPresent, "PortCardPresent");
  fields.Add(&Slot::powerOn, "PowerOn");
  fields.Add(&Slot::powerFault, "PowerFault");
  fields.Add(&Slot::outerSlot, "OuterSlot");
  fields.Add(&Slot::conflicts, "Conflicts");
  return fields;
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
    const std::shared_ptr<vtq::Class> cimClass = repository_.Find(kFunctionClass);
    if (cimClass == nullptr) return;
    const PropertyReader reader(*cimClass);
    const FieldList<MachineFunction> fields = FunctionFields(reader);
    model_.functions.reserve(cimClass->GetInstances().size());
    for (const auto& instance : cimClass->GetInstances()) {
      const auto address = ParseDomainAddress(reader.Text(*instance, "Address"));
      if (!address) continue;
      MachineFunction& function = model_.functions.emplace_back();
      function.address = *address;
      function.buses = BusesOf(reader, *instance);
      fields.Fill(*instance, function);
    }
    SortFunctions();
  }

  void SortFunctions() {
    const auto isBefore = [](const MachineFunction& left, const MachineFunction& right) {
      return left.address < right.address;
    };
    // Functions are large, and the plug-in sorts them.
    if (std::is_sorted(model_.functions.begin(), model_.functions.end(), isBefore)) return;
    std::stable_sort(model_.functions.begin(), model_.functions.end(), isBefore);
  }

  void ReadSlotInstances() {
    const std::shared_ptr<vtq::Class> cimClass = repository_.Find(kSlotClass);
    if (cimClass == nullptr) return;
    const PropertyReader reader(*cimClass);
    const FieldList<MachineSlot> fields = SlotFields(reader);
    for (const auto& instance : cimClass->GetInstances()) {
      MachineSlot& slot = model_.slots.emplace_back();
      fields.Fill(*instance, slot);
      slotByName_.emplace(slot.name, model_.slots.size() - 1);
    }
  }

  void ReadOccupants() {
    ForEach(repository_, kFunctionInSlotClass, [&](const auto& reader, const auto& instance) {
      const auto slot = slotByName_.find(reader.KeyText(instance, "Antecedent", "Name"));
      const auto function = PlaceAt(reader.KeyText(instance, "Dependent", "Address"));
      if (slot == slotByName_.end() || !function) return;
      MachineFunction& occupant = model_.functions[*function];
      occupant.slot = slot->second;
      occupant.certainty = reader.Text(instance, "Certainty");
      occupant.evidence = reader.Text(instance, "Evidence");
      model_.slots[slot->second].functions.push_back(*function);
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
        if (const auto function = PlaceAt(text)) shared.functions.push_back(*function);
      }
      model_.shared.push_back(std::move(shared));
    });
  }

  /// The place of the function at an address.
  std::optional<std::size_t> PlaceAt(const std::string& text) const {
    const auto address = ParseDomainAddress(text);
    const MachineFunction* const function = address ? model_.Find(*address) : nullptr;
    if (function == nullptr) return std::nullopt;
    return static_cast<std::size_t>(function - model_.functions.data());
  }

  const vtq::Namespace& repository_;
  MachineModel model_;
  std::unordered_map<std::string, std::size_t> slotByName_;
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
