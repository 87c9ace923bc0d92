// SPDX-License-Identifier: Apache-2.0
#include "bench/machine_plan.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

#include "bench/device_kinds.h"

namespace bench {
namespace {

using nlohmann::json;

constexpr unsigned kFunctionsOfBus = 256;
constexpr unsigned kFirstForeignBus = 0xFC;  // used in other domains only
constexpr std::size_t kFunctionsOfSocket = 512;
constexpr std::size_t kMostSockets = 28;
constexpr std::size_t kMostCards = 16;

struct Address {
  unsigned domain = 0, bus = 0, device = 0, function = 0;

  std::string Text() const {
    return fmt::format("{:04x}:{:02x}:{:02x}.{}", domain, bus, device, function);
  }
  // The address as recipes write it.
  std::string RecipeText() const { return domain == 0 ? Text().substr(5) : Text(); }
};

struct BusRange {
  unsigned primary, secondary, subordinate;
};

// How many functions and buses may still be added.
struct Room {
  std::size_t functions, buses;
};

class Planner {
 public:
  MachinePlan Plan(std::size_t functions);

 private:
  void AddSocket(unsigned firstBus, unsigned buses, std::size_t functions);
  void AddChipset();
  void AddPortWithCard(unsigned rootBus, unsigned* nextBus, const Room& room);
  void AddCard(const DeviceKind& kind, unsigned bus);
  void AddSwitch(unsigned* nextBus, PlannedSlot* slot);
  void AddProcessorDevices(unsigned bus, std::size_t functions);
  void AddForeignDomains(std::size_t functions);
  json& Add(const DeviceKind& kind, const Address& at, bool isMulti);
  void AddBridge(const DeviceKind& kind, const Address& at, const BusRange& buses, bool isMulti);
  json SlotStructures() const;

  MachinePlan plan_;
  json functions_ = json::array();
  unsigned ports_ = 0;  // of the current socket
  std::uint64_t nextAddress_ = 0x90000000;
  unsigned nextCard_ = 0;
};

json MemoryRegion(std::uint64_t* nextAddress) {
  constexpr unsigned kSize = 0x10000;
  *nextAddress += kSize;
  return {{"memory", *nextAddress}, {"size", kSize}, {"flags", 4}};
}

json& Planner::Add(const DeviceKind& kind, const Address& at, bool isMulti) {
  const bool isBridge = kind.capabilities == Capabilities::kPort;
  const unsigned type = (isBridge ? 1 : 0) | (isMulti ? 0x80 : 0);
  json function = {{"address", at.RecipeText()}, {"vendor", kind.vendor},
                   {"device", kind.device},      {"class", kind.classCode},
                   {"progIf", kind.progIf},      {"revision", 2},
                   {"headerType", type},         {"irq", 16 + functions_.size() % 200},
                   {"driver", kind.driver},      {"configSize", SizeOf(kind.capabilities)}};
  if (!isBridge) {
    function["subsystem"] = {"f1a5", "0001"};
    function["regions"] = {MemoryRegion(&nextAddress_), nullptr};
    if (kind.hasIo) {
      function["regions"].push_back({{"io", 0x1000 + functions_.size() % 256 * 64}, {"size", 32}});
    }
  }
  for (const ConfigurationPatch& patch : PatchesOf(kind.capabilities)) {
    function["patches"].push_back({{"at", patch.offset}, {"bytes", patch.bytes}});
  }
  return functions_.emplace_back(std::move(function));
}

void Planner::AddBridge(const DeviceKind& kind, const Address& at, const BusRange& buses,
                        bool isMulti) {
  Add(kind, at, isMulti)["buses"] = {buses.primary, buses.secondary, buses.subordinate};
}

void Planner::AddCard(const DeviceKind& kind, unsigned bus) {
  for (unsigned function = 0; function < kind.functions; ++function) {
    const Address at{0, bus, 0, function};
    Add(kind, at, kind.functions > 1);
    plan_.slots.back().functions.push_back(at.Text());
  }
}

// A switch with four drives; takes six buses and nine functions.
void Planner::AddSwitch(unsigned* nextBus, PlannedSlot* slot) {
  constexpr unsigned kPorts = 4;
  const unsigned bus = (*nextBus)++;
  const unsigned inner = (*nextBus)++;
  const auto addTo = [slot](const Address& at) { slot->functions.push_back(at.Text()); };
  AddBridge(SwitchPort(), {0, bus, 0, 0}, {bus, inner, inner + kPorts}, false);
  addTo({0, bus, 0, 0});
  for (unsigned port = 0; port < kPorts; ++port) {
    const Address at{0, inner, 8 + port, 0};
    AddBridge(SwitchPort(), at, {inner, *nextBus, *nextBus}, false);
    addTo(at);
  }
  for (unsigned port = 0; port < kPorts; ++port) {
    const Address at{0, (*nextBus)++, 0, 0};
    Add(Drive(), at, false);
    addTo(at);
  }
}

void Planner::AddPortWithCard(unsigned rootBus, unsigned* nextBus, const Room& room) {
  const unsigned place = nextCard_++;
  const Address port{0, rootBus, 1 + ports_ / 4, ports_ % 4};
  ++ports_;
  const unsigned bus = *nextBus;
  PlannedSlot& slot = plan_.slots.emplace_back();
  slot.designation = fmt::format("PCIe Slot {}", plan_.slots.size());
  const bool isEmpty = place % 7 == 6;
  const bool isSwitch = place % 9 == 8 && room.functions >= 10 && room.buses >= 6;
  AddBridge(RootPort(), port, {rootBus, bus, isSwitch ? bus + 5 : bus}, true);
  if (isEmpty) {
    ++*nextBus;
    return;
  }
  slot.bus = bus;
  if (isSwitch) return AddSwitch(nextBus, &slot);
  ++*nextBus;
  const DeviceKind& kind = Cards()[place % Cards().size()];
  AddCard(kind.functions < room.functions ? kind : Drive(), bus);
}

void Planner::AddChipset() {
  unsigned device = 0x14;
  for (const DeviceKind& kind : Chipset()) Add(kind, {0, 0, device++, 0}, false);
}

void Planner::AddProcessorDevices(unsigned bus, std::size_t functions) {
  for (unsigned place = 0; place < functions; ++place) {
    // Devices have up to 6 functions, or 8 if the bus would be too small otherwise.
    const unsigned perDevice = functions > 6 * 32 ? 8 : 6;
    const DeviceKind& kind = ProcessorDevices()[place / 2 % ProcessorDevices().size()];
    Add(kind, {0, bus, place / perDevice, place % perDevice}, true);
  }
}

void Planner::AddSocket(unsigned firstBus, unsigned buses, std::size_t functions) {
  const std::size_t end = functions_.size() + functions;
  Add(HostBridge(), {0, firstBus, 0, 0}, false);
  if (firstBus == 0) AddChipset();
  ports_ = 0;
  unsigned nextBus = firstBus + 1;
  // Two fifths are ports and cards; the rest, including those without a free bus, are devices of
  // the processor.
  const std::size_t cardsEnd = functions_.size() + functions * 2 / 5;
  const auto ownBuses = static_cast<unsigned>(functions * 3 / 5 / (kFunctionsOfBus / 2) + 1);
  const unsigned busesEnd = nextBus + std::min<unsigned>(buses - 1 - ownBuses, kMostCards);
  while (functions_.size() + 2 <= cardsEnd && nextBus < busesEnd) {
    AddPortWithCard(firstBus, &nextBus, {cardsEnd - functions_.size(), busesEnd - nextBus});
  }
  for (std::size_t left = end - functions_.size(); left > 0; left = end - functions_.size()) {
    const std::size_t busesLeft = firstBus + buses - nextBus;
    const std::size_t share = (left + busesLeft - 1) / busesLeft;
    AddProcessorDevices(nextBus++, std::min<std::size_t>(left, std::max<std::size_t>(share, 120)));
  }
}

// Drives behind volume management controllers. The kernel's list shows them without their domain.
void Planner::AddForeignDomains(std::size_t functions) {
  for (std::size_t i = 0; i < functions; ++i) {
    const unsigned domain = i < functions / 2 ? 0x10000 : 0x0001;
    const auto place = static_cast<unsigned>(i % 96);
    Add(Drive(), {domain, kFirstForeignBus + place / 32, place % 32, 0}, false);
  }
}

json Planner::SlotStructures() const {
  json structures = json::array();
  structures.push_back(
      {{"bios", {{"vendor", "Firmware Works"}, {"version", "3.4"}, {"date", "01/15/2023"}}}});
  for (const PlannedSlot& slot : plan_.slots) {
    const bool isEmpty = slot.bus == 0;
    json structure = {{"designation", slot.designation},
                      {"type", "b6"},
                      {"width", "0d"},
                      {"usage", isEmpty ? 3 : 4},
                      {"length", 4},
                      {"id", &slot - plan_.slots.data() + 1},
                      {"characteristics", {"0c", "01"}},
                      {"bus", isEmpty ? 0xFF : slot.bus},
                      {"device", isEmpty ? 31 : 0},
                      {"function", isEmpty ? 7 : 0},
                      {"structureLength", 17}};
    structures.push_back({{"slot", std::move(structure)}});
  }
  return structures;
}

MachinePlan Planner::Plan(std::size_t functions) {
  const std::size_t foreign = std::max<std::size_t>(2, std::min<std::size_t>(functions / 128, 128));
  const std::size_t own = functions - foreign;
  const std::size_t sockets = std::clamp<std::size_t>(own / kFunctionsOfSocket, 1, kMostSockets);
  const auto buses = static_cast<unsigned>(kFirstForeignBus / sockets);
  for (unsigned socket = 0; socket < sockets; ++socket) {
    const std::size_t share = own * (socket + 1) / sockets - own * socket / sockets;
    AddSocket(socket * buses, buses, share);
  }
  AddForeignDomains(foreign);
  plan_.recipe = {
      {"about", "A machine to measure with."},
      {"pci", std::move(functions_)},
      {"smbios", {{"anchor", "_SM3_"}, {"version", "3.2"}, {"structures", SlotStructures()}}}};
  return std::move(plan_);
}

}  // namespace

MachinePlan PlanMachine(std::size_t functions) {
  if (functions < kFewestFunctions || functions > kMostFunctions) {
    throw std::invalid_argument(
        fmt::format("a machine can be made with {} to {} functions, not with {}", kFewestFunctions,
                    kMostFunctions, functions));
  }
  return Planner().Plan(functions);
}

}  // namespace bench
