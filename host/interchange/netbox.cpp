// SPDX-License-Identifier: Apache-2.0
#include "host/interchange/netbox.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "host/console/text.h"
#include "host/interchange/json_members.h"
#include "host/interchange/pci_devices.h"
#include "host/machine/names.h"

namespace pciinfo {
namespace {

using Json = nlohmann::ordered_json;

// What NetBox takes of a text.
constexpr std::size_t kLongestName = 64;  // of devices, module bays and interfaces
constexpr std::size_t kLongestModel = 100;
constexpr std::size_t kLongestNumber = 50;
constexpr std::size_t kLongestPosition = 30;
constexpr std::size_t kLongestDescription = 200;

std::string Name(const std::string& text) { return Cut(NameIn(text), kLongestName); }
/// The name by which all that is in the slot refers to it, also where it is no good name.
std::string SlotName(const MachineSlot& slot) { return Cut(Printable(slot.name), kLongestName); }

std::string Model(const std::string& text) { return Cut(NameIn(text), kLongestModel); }

/// NetBox tells bays by their names.
bool HasBay(const MachineSlot& slot) { return slot.IsNamed() && !slot.name.empty(); }

/// A number that is cut is another number.
std::string Number(const std::string& text) { return text.size() > kLongestNumber ? "" : text; }

/// The form of a name in NetBox's own URLs: "dell-inc" for "Dell Inc.".
std::string SlugOf(const std::string& name) {
  std::string slug;
  for (const char c : name.substr(0, kLongestModel)) {
    const bool isUpper = c >= 'A' && c <= 'Z';
    const bool isPlain = isUpper || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
    if (isPlain) slug += isUpper ? static_cast<char>(c + ('a' - 'A')) : c;
    if (!isPlain && !slug.empty() && slug.back() != '-') slug += '-';
  }
  while (!slug.empty() && slug.back() == '-') slug.pop_back();
  return slug.empty() ? "unknown" : slug;
}

/// Not that of an InfiniBand interface, which has twenty bytes.
std::string MacAddress(const SystemDevice& device) {
  constexpr std::size_t kLength = sizeof "52:54:00:12:34:56" - 1;
  const std::string& address = device.hardwareAddress;
  return address.size() == kLength && !IsBlankIdentifier(address) ? Printable(address) : "";
}

/// A card, as NetBox knows it: by the device that does its work, which is not a bridge.
struct Module {
  const MachineSlot* slot = nullptr;
  const MachineFunction* function = nullptr;
  Product product;
};

/// Makes the rows of one machine, which must outlive it.
class NetBoxMaker final {
 public:
  explicit NetBoxMaker(const CollectedMachine& machine)
      : machine_(machine),
        model_(machine.facts.machine),
        name_(Name(machine.stamp.systemName)),
        devices_(DevicesOf(model_)) {
    for (const MachineSlot& slot : model_.slots) {
      if (auto module = ModuleIn(slot)) modules_.push_back(*std::move(module));
    }
  }

  Json Make() const {
    return {{"manufacturers", Manufacturers()},
            {"device_types", DeviceTypes()},
            {"devices", Devices()},
            {"module_bays", ModuleBays()},
            {"module_types", ModuleTypes()},
            {"modules", Modules()},
            {"interfaces", Interfaces()},
            {"mac_addresses", MacAddresses()}};
  }

 private:
  /// The card in a slot, if it is known; the cards in slots on a card are modules of their own
  /// bays.
  std::optional<Module> ModuleIn(const MachineSlot& slot) const {
    if (!HasBay(slot) || !slot.innerSlots.empty()) return std::nullopt;
    for (const PciDevice& device : devices_) {
      const std::size_t first = device.functions.front();
      const bool isInside =
          std::find(slot.functions.begin(), slot.functions.end(), first) != slot.functions.end();
      const MachineFunction& function = model_.functions[first];
      if (!isInside || (function.IsBridge() && HasOtherThanBridges(slot))) continue;
      return Module{&slot, &function, ProductOf(device, machine_.facts)};
    }
    return std::nullopt;
  }

  bool HasOtherThanBridges(const MachineSlot& slot) const {
    return std::any_of(slot.functions.begin(), slot.functions.end(), [this](std::size_t function) {
      return !model_.functions[function].IsBridge();
    });
  }

  static std::string ManufacturerOf(const Module& module) {
    return Model(module.product.manufacturer);
  }

  static std::string ModelOf(const Module& module) {
    const std::string model = Model(module.product.model);
    return model.empty() ? IdText(*module.function) : model;
  }

  std::string Maker() const { return Model(machine_.identity.maker); }
  std::string MachineModelName() const { return Model(machine_.identity.product); }

  Json Manufacturers() const {
    std::set<std::string> names = {Maker()};
    for (const Module& module : modules_) names.insert(ManufacturerOf(module));
    names.erase("");
    Json rows = Json::array();
    for (const std::string& name : names) rows.push_back({{"name", name}, {"slug", SlugOf(name)}});
    return rows;
  }

  Json DeviceTypes() const {
    if (Maker().empty() || MachineModelName().empty()) return Json::array();
    const std::string slug = SlugOf(Maker() + "-" + MachineModelName());
    return Json::array(
        {{{"manufacturer", Maker()}, {"model", MachineModelName()}, {"slug", slug}}});
  }

  Json Devices() const {
    if (name_.empty()) return Json::array();
    Json row = {{"name", name_}};
    AddKnownText(row, "manufacturer", Maker());
    AddKnownText(row, "device_type", MachineModelName());
    row["status"] = "active";
    return Json::array({std::move(row)});
  }

  Json ModuleBays() const {
    Json rows = Json::array();
    for (const MachineSlot& slot : model_.slots) {
      if (name_.empty() || !HasBay(slot)) continue;
      Json row = {{"device", name_}, {"name", SlotName(slot)}};
      const auto position = slot.id ? slot.id : slot.physicalNumber;
      if (position) row["position"] = Cut(std::to_string(*position), kLongestPosition);
      rows.push_back(std::move(row));
    }
    return rows;
  }

  /// A type has one part number: none if two of its cards differ.
  Json ModuleTypes() const {
    std::map<std::pair<std::string, std::string>, std::set<std::string>> types;
    for (const Module& module : modules_) {
      if (ManufacturerOf(module).empty()) continue;
      types[{ManufacturerOf(module), ModelOf(module)}].insert(Number(module.product.partNumber));
    }
    Json rows = Json::array();
    for (const auto& [type, numbers] : types) {
      Json row = {{"manufacturer", type.first}, {"model", type.second}};
      if (numbers.size() == 1) AddKnownText(row, "part_number", *numbers.begin());
      rows.push_back(std::move(row));
    }
    return rows;
  }

  Json Modules() const {
    Json rows = Json::array();
    for (const Module& module : modules_) {
      if (name_.empty() || ManufacturerOf(module).empty()) continue;
      Json row = {{"device", name_},
                  {"module_bay", SlotName(*module.slot)},
                  {"module_type", ModelOf(module)},
                  {"status", "active"}};
      AddKnownText(row, "serial", Number(module.product.serialNumber));
      if (module.function->certainty == "likely") {
        row["description"] =
            Cut("likely: " + Printable(module.function->evidence), kLongestDescription);
      }
      rows.push_back(std::move(row));
    }
    return rows;
  }

  template <class Visit>
  void ForEachInterface(const Visit& visit) const {
    if (name_.empty()) return;
    for (const FunctionFacts& facts : machine_.facts.functions) {
      for (const SystemDevice& device : facts.systemDevices) {
        if (device.kind == "network") visit(device);
      }
    }
  }

  /// The kernel does not tell the medium, which is what NetBox calls the type.
  Json Interfaces() const {
    Json rows = Json::array();
    ForEachInterface([&](const SystemDevice& device) {
      rows.push_back({{"device", name_}, {"name", Name(device.name)}, {"type", "other"}});
      AddKnownText(rows.back(), "mac_address", MacAddress(device));
    });
    return rows;
  }

  Json MacAddresses() const {
    Json rows = Json::array();
    ForEachInterface([&](const SystemDevice& device) {
      if (MacAddress(device).empty()) return;
      rows.push_back({{"mac_address", MacAddress(device)},
                      {"device", name_},
                      {"interface", Name(device.name)},
                      {"is_primary", true}});
    });
    return rows;
  }

  const CollectedMachine& machine_;
  const MachineModel& model_;
  std::string name_;
  std::vector<PciDevice> devices_;
  std::vector<Module> modules_;
};

}  // namespace

Json NetBoxJson(const CollectedMachine& machine) { return NetBoxMaker(machine).Make(); }

}  // namespace pciinfo
