// SPDX-License-Identifier: Apache-2.0
#include "host/interchange/redfish.h"

#include <algorithm>
#include <map>

#include "host/console/text.h"
#include "host/interchange/json_members.h"
#include "host/interchange/pci_devices.h"
#include "host/interchange/redfish_values.h"
#include "host/machine/link_text.h"
#include "host/machine/names.h"

namespace pciinfo {
namespace {

using Json = nlohmann::ordered_json;

/// Whether a text may stand in a URI as it is.
bool IsPlain(const std::string& text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' ||
           c == '.' || c == '_';
  });
}

Json LinkTo(const std::string& uri) { return {{"@odata.id", uri}}; }

Json Resource(const std::string& uri, const char* type, const std::string& id,
              const std::string& name) {
  return {{"@odata.id", uri}, {"@odata.type", type}, {"Id", id}, {"Name", ToUtf8(name)}};
}

Json Collection(const std::string& uri, const char* type, const char* name, Json members) {
  return {{"@odata.id", uri},
          {"@odata.type", type},
          {"Name", name},
          {"Members@odata.count", members.size()},
          {"Members", std::move(members)}};
}

/// The location of a slot, as people read it on the machine.
Json LocationOf(const MachineSlot& slot) {
  Json part = {{"LocationType", "Slot"}};
  if (slot.IsNamed()) AddKnownText(part, "ServiceLabel", NameIn(slot.name));
  AddKnownValue(part, "LocationOrdinalValue", slot.id ? slot.id : slot.physicalNumber);
  return {{"PartLocation", std::move(part)}};
}

/// What a slot is, whatever sits in it.
Json SlotMembers(const MachineSlot& slot) {
  Json object = Json::object();
  AddKnownText(object, "SlotType", SlotTypeOf(slot));
  AddKnownText(object, "PCIeType", PcieTypeOf(slot));
  AddKnownValue(object, "Lanes", LanesOf(slot));
  object["Location"] = LocationOf(slot);
  return object;
}

/// Makes the resources of one machine, which must outlive it.
class RedfishMaker final {
 public:
  explicit RedfishMaker(const CollectedMachine& machine)
      : machine_(machine),
        model_(machine.facts.machine),
        id_(IsPlain(machine.stamp.systemName) ? machine.stamp.systemName : "1"),
        chassis_("/redfish/v1/Chassis/" + id_),
        system_("/redfish/v1/Systems/" + id_),
        devices_(DevicesOf(model_)) {
    for (std::size_t i = 0; i < devices_.size(); ++i) {
      for (const std::size_t function : devices_[i].functions) deviceOf_[function] = i;
    }
    for (const CheckFinding& finding : machine.findings) {
      for (const AffectedObject& object : finding.objects) Note(object, finding.severity);
    }
  }

  Json Make() const {
    Json chassis = Resource(chassis_, "#Chassis.v1_14_0.Chassis", id_, Name());
    chassis["ChassisType"] = "Other";
    chassis["Status"] = {{"State", "Enabled"}};
    AddKnownText(chassis["Status"], "HealthRollup", WorstHealth());
    chassis["PCIeSlots"] = SlotsResource();
    Json members = Json::array();
    for (const PciDevice& device : devices_) members.push_back(DeviceResource(device));
    chassis["PCIeDevices"] = Collection(DevicesUri(), "#PCIeDeviceCollection.PCIeDeviceCollection",
                                        "PCI devices", std::move(members));
    chassis["Links"] = {{"ComputerSystems", Json::array({SystemResource()})},
                        {"ComputerSystems@odata.count", 1}};
    return chassis;
  }

 private:
  std::string Name() const {
    const std::string name = Printable(machine_.stamp.systemName);
    return name.empty() ? "Machine" : name;
  }

  void Note(const AffectedObject& object, Severity severity) {
    const std::string& key = object.address.empty() ? object.object : object.address;
    const auto [place, isNew] = worst_.emplace(key, severity);
    if (!isNew) place->second = std::min(place->second, severity);
  }

  /// A machine of which something could not be collected is not known to be well.
  std::string HealthOf(Severity worst) const {
    if (worst == Severity::kError) return "Critical";
    if (worst == Severity::kWarning) return "Warning";
    return machine_.troubles.empty() ? "OK" : "";
  }

  Severity WorstAt(const std::string& object) const {
    const auto found = worst_.find(object);
    return found == worst_.end() ? Severity::kNote : found->second;
  }

  std::string WorstHealth() const {
    Severity worst = Severity::kNote;
    for (const auto& [object, severity] : worst_) worst = std::min(worst, severity);
    return HealthOf(worst);
  }

  Json StatusOf(const char* state, Severity worst) const {
    Json status = Json::object();
    AddKnownText(status, "State", state);
    AddKnownText(status, "Health", HealthOf(worst));
    return status;
  }

  Json SystemResource() const {
    const MachineIdentity& identity = machine_.identity;
    Json system = Resource(system_, "#ComputerSystem.v1_13_0.ComputerSystem", id_, Name());
    AddKnownText(system, "HostName", machine_.stamp.systemName);
    AddKnownText(system, "UUID", machine_.stamp.ids.systemUuid);
    AddKnownText(system, "Manufacturer", NameIn(identity.maker));
    AddKnownText(system, "Model", NameIn(identity.product));
    AddKnownText(system, "BiosVersion", NameIn(identity.biosVersion));
    system["Links"] = {{"Chassis", Json::array({LinkTo(chassis_)})}, {"Chassis@odata.count", 1}};
    return system;
  }

  Json SlotsResource() const {
    Json slots = Resource(chassis_ + "/PCIeSlots", "#PCIeSlots.v1_5_0.PCIeSlots", "PCIeSlots",
                          "PCI Express slots");
    slots["Slots"] = Json::array();
    for (const MachineSlot& slot : model_.slots) slots["Slots"].push_back(SlotEntry(slot));
    return slots;
  }

  Json SlotEntry(const MachineSlot& slot) const {
    constexpr const char* kStates[] = {"", "Absent", "Enabled"};
    Json object = SlotMembers(slot);
    AddKnownValue(object, "HotPluggable", slot.hotPlug ? slot.hotPlug : slot.portHotPlug);
    const Severity worst = WorstAt(slot.name);
    object["Status"] = StatusOf(kStates[static_cast<std::size_t>(slot.state)], worst);
    const bool hasNothing = slot.state == SlotState::kEmpty && worst == Severity::kNote;
    if (hasNothing) object["Status"].erase("Health");
    Json links = Json::array();
    std::vector<bool> isLinked(devices_.size());
    for (const std::size_t function : slot.functions) {
      const std::size_t device = deviceOf_.at(function);
      if (!isLinked[device]) links.push_back(LinkTo(UriOf(devices_[device])));
      isLinked[device] = true;
    }
    object["Links"] = {{"PCIeDevice@odata.count", links.size()}, {"PCIeDevice", std::move(links)}};
    return object;
  }

  std::string DevicesUri() const { return chassis_ + "/PCIeDevices"; }
  std::string UriOf(const PciDevice& device) const { return DevicesUri() + "/" + device.name; }

  Json DeviceResource(const PciDevice& device) const {
    const MachineFunction& first = model_.functions[device.functions.front()];
    const std::string uri = UriOf(device);
    Json object = Resource(uri, "#PCIeDevice.v1_9_0.PCIeDevice", device.name, MakerAndModel(first));
    AddProduct(object, device);
    const auto isPhysical = [this](std::size_t function) {
      return !model_.functions[function].physicalFunction;
    };
    const auto physical =
        std::count_if(device.functions.begin(), device.functions.end(), isPhysical);
    object["DeviceType"] = physical > 1 ? "MultiFunction" : "SingleFunction";
    object["Status"] = StatusOf("Enabled", WorstAt(device));
    AddInterface(object, device);
    if (first.slot) object["Slot"] = SlotMembers(model_.slots[*first.slot]);
    object["PCIeFunctions"] = FunctionsResource(device, uri);
    object["Links"] = {{"Chassis", Json::array({LinkTo(chassis_)})}, {"Chassis@odata.count", 1}};
    return object;
  }

  void AddProduct(Json& object, const PciDevice& device) const {
    const Product product = ProductOf(device, machine_.facts);
    AddKnownText(object, "Manufacturer", product.manufacturer);
    AddKnownText(object, "Model", product.model);
    AddKnownText(object, "PartNumber", product.partNumber);
    AddKnownText(object, "SerialNumber", product.serialNumber);
    AddKnownText(object, "FirmwareVersion", product.firmware);
  }

  Severity WorstAt(const PciDevice& device) const {
    Severity worst = Severity::kNote;
    for (const std::size_t function : device.functions)
      worst = std::min(worst, WorstAt(FormatAddress(model_.functions[function].address)));
    return worst;
  }

  /// The link of a port leads to what is behind it, not to the port itself.
  void AddInterface(Json& object, const PciDevice& device) const {
    const MachineFunction& first = model_.functions[device.functions.front()];
    if (LeadsToLink(first)) return;
    Json interface = Json::object();
    AddKnownValue(interface, "LanesInUse", first.link.width);
    AddKnownValue(interface, "MaxLanes", first.link.maxWidth);
    AddKnownText(interface, "PCIeType", PcieTypeOfSpeed(first.link.speed));
    AddKnownText(interface, "MaxPCIeType", PcieTypeOfSpeed(first.link.maxSpeed));
    if (!interface.empty()) object["PCIeInterface"] = std::move(interface);
  }

  Json FunctionsResource(const PciDevice& device, const std::string& uri) const {
    Json members = Json::array();
    for (const std::size_t function : device.functions)
      members.push_back(FunctionResource(model_.functions[function], uri));
    return Collection(uri + "/PCIeFunctions", "#PCIeFunctionCollection.PCIeFunctionCollection",
                      "PCI functions", std::move(members));
  }

  Json FunctionResource(const MachineFunction& function, const std::string& device) const {
    const std::string id = FormatAddress(function.address);
    Json object = Resource(device + "/PCIeFunctions/" + id, "#PCIeFunction.v1_3_0.PCIeFunction", id,
                           ModelText(function));
    // A virtual function has no number of its own, only a routing ID.
    if (!function.physicalFunction) object["FunctionId"] = function.address.address.function;
    object["FunctionType"] = function.physicalFunction ? "Virtual" : "Physical";
    AddKnownText(object, "DeviceClass", DeviceClassOf(function));
    AddKnownText(object, "ClassCode", ClassCodeOf(function));
    AddKnownText(object, "VendorId", HexWord(function.vendorId));
    AddKnownText(object, "DeviceId", HexWord(function.deviceId));
    AddKnownText(object, "RevisionId", HexByte(function.revision));
    AddKnownText(object, "SubsystemVendorId", HexWord(function.subsystemVendorId));
    AddKnownText(object, "SubsystemId", HexWord(function.subsystemId));
    object["Status"] = StatusOf("Enabled", WorstAt(id));
    object["Links"] = {{"PCIeDevice", LinkTo(device)}};
    return object;
  }

  const CollectedMachine& machine_;
  const MachineModel& model_;
  std::string id_;
  std::string chassis_;
  std::string system_;
  std::vector<PciDevice> devices_;
  std::map<std::size_t, std::size_t> deviceOf_;  ///< by place of the function
  std::map<std::string, Severity> worst_;        ///< by address and name of the slot
};

}  // namespace

Json RedfishJson(const CollectedMachine& machine) { return RedfishMaker(machine).Make(); }

}  // namespace pciinfo
