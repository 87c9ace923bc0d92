// SPDX-License-Identifier: Apache-2.0
#include "bench/fleet/fleet_machine.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>

#include "bench/fleet/card_functions.h"
#include "bench/fleet/random.h"
#include "host/check/machine_checks.h"

namespace bench {
namespace {

using pciinfo::MachineFunction;
using pciinfo::MachineSlot;

/// A device of the board: it is in no slot.
struct BoardDevice {
  unsigned deviceId;
  unsigned baseClass;
  unsigned subclass;
  const char* device;
  const char* className;
  const char* driver;
  const char* reason;
};

constexpr const char* kRootBus = "it is a part of the chip set on a root bus";
constexpr BoardDevice kHostBridge{0x2020, 0x06, 0x00, "Host Bridge", "Host bridge", "", kRootBus};
constexpr BoardDevice kRootPort{0x2030,       0x06,       0x04,    "PCI Express Root Port",
                                "PCI bridge", "pcieport", kRootBus};
constexpr std::array kChipset = {
    BoardDevice{0xa1af, 0x0c, 0x03, "USB 3.0 xHCI Controller", "USB controller", "xhci_hcd",
                kRootBus},
    BoardDevice{0xa182, 0x01, 0x06, "SATA Controller", "SATA controller", "ahci", kRootBus},
    BoardDevice{0xa1c1, 0x06, 0x01, "LPC Controller", "ISA bridge", "", kRootBus},
    BoardDevice{0xa1a3, 0x0c, 0x05, "SMBus", "SMBus", "i801_smbus", kRootBus},
};
constexpr std::array kProcessorDevices = {
    BoardDevice{0x2014, 0x08, 0x80, "Ubox Registers", "System peripheral", "", kRootBus},
    BoardDevice{0x2016, 0x08, 0x80, "Memory Map Registers", "System peripheral", "", kRootBus},
    BoardDevice{0x2041, 0x08, 0x80, "Memory Controller", "System peripheral", "", kRootBus},
    BoardDevice{0x2054, 0x11, 0x01, "Cache Agent", "Performance counters", "", kRootBus},
    BoardDevice{0x2021, 0x08, 0x80, "DMA Channel", "System peripheral", "ioatdma", kRootBus},
};

constexpr unsigned kSecondSocket = 0x80;

FleetFunction OnBoard(const BoardDevice& device, const pciinfo::PciAddress& address) {
  MachineFunction function;
  function.address = {0, address};
  function.vendorId = 0x8086;
  function.deviceId = device.deviceId;
  function.baseClass = device.baseClass;
  function.subclass = device.subclass;
  function.programmingInterface = 0;
  function.revision = 7;
  function.vendorName = "Intel Corporation";
  function.deviceName = device.device;
  function.className = device.className;
  function.headerType = device.subclass == kRootPort.subclass && device.baseClass == 0x06 ? 1 : 0;
  function.driver = device.driver;
  function.numaNode = static_cast<int>(address.bus >= kSecondSocket);
  function.place = pciinfo::FunctionPlace::kOnBoard;
  function.placeReason = device.reason;
  return {std::move(function), {}};
}

/// SMBIOS codes of slots (DSP0134 7.10).
unsigned WidthCode(unsigned lanes) { return lanes == 16 ? 0x0D : lanes == 8 ? 0x0B : 0x0A; }
unsigned TypeCode(unsigned generation, unsigned lanes, bool isBay) {
  if (isBay) return generation >= 5 ? 0x25 : 0x24;
  const unsigned x1 = generation >= 5 ? 0xBF : generation == 4 ? 0xB9 : 0xB2;
  return x1 + (lanes == 16 ? 4 : lanes == 8 ? 3 : 2);
}

/// Puts the parts of a machine together.
class MachineBuilder final {
 public:
  explicit MachineBuilder(const MachineState& state) : state_(state) {}

  pciinfo::MachineFacts Build() {
    AddBoard();
    for (std::size_t place = 0; place < state_.places.size(); ++place) AddPlace(place);
    AddProcessorDevices();
    Sort();
    return std::move(facts_);
  }

 private:
  void AddBoard() {
    for (const unsigned bus : {0U, kSecondSocket}) {
      functions_.push_back(OnBoard(kHostBridge, {bus, 0, 0}));
    }
    unsigned number = 0;
    for (const BoardDevice& device : kChipset) {
      functions_.push_back(OnBoard(device, {0, 0x1f, number++}));
    }
  }

  void AddPlace(std::size_t place) {
    const MachineKind& kind = state_.Kind();
    const bool isBay = place >= kind.slots.size();
    const auto half = static_cast<unsigned>(place / 2);
    const unsigned root = place % 2 == 0 ? 0 : kSecondSocket;
    const CardPlace at{state_.number,
                       place,
                       {0, {root, 1 + half, 0}},
                       root + 1 + half,
                       isBay ? 4 : kind.slots[place],
                       kind.generation};
    const std::optional<InstalledCard>& card = state_.places[place];
    std::vector<FleetFunction> functions;
    if (card) functions = FunctionsOfCard(*card, at);
    const pciinfo::Link link = LinkOfPort(functions, at);
    FleetFunction port = OnBoard(kRootPort, at.port.address);
    port.function.portType = "root port";
    port.function.buses = {at.bus, at.bus};
    port.function.link = link;
    functions_.push_back(std::move(port));
    AddSlot(at, isBay, link);
    std::move(functions.begin(), functions.end(), std::back_inserter(functions_));
  }

  pciinfo::Link LinkOfPort(const std::vector<FleetFunction>& functions, const CardPlace& at) const {
    pciinfo::Link link{std::nullopt, "", at.lanes, SpeedOf(state_.Kind().generation)};
    if (functions.empty()) return link;
    link.width = functions.front().function.link.width;
    link.speed = functions.front().function.link.speed;
    return link;
  }

  void AddSlot(const CardPlace& at, bool isBay, const pciinfo::Link& link) {
    constexpr unsigned kAvailable = 3;
    constexpr unsigned kInUse = 4;
    const MachineKind& kind = state_.Kind();
    MachineSlot slot;
    const auto number = static_cast<unsigned>(at.slot + 1);
    slot.name = isBay ? fmt::format("Drive Bay {}", number - kind.slots.size())
                      : fmt::format("PCIe Slot {}", number);
    slot.source = "SMBIOS record";
    slot.state = link.width ? pciinfo::SlotState::kOccupied : pciinfo::SlotState::kEmpty;
    slot.recordHandle = 0x100 + static_cast<unsigned>(at.slot);
    slot.id = slot.physicalNumber = number;
    slot.type = TypeCode(kind.generation, at.lanes, isBay);
    slot.width = WidthCode(at.lanes);
    slot.length = isBay ? 5 : 4;
    slot.usage = link.width ? kInUse : kAvailable;
    slot.firmwareAddress = FormatAddress(pciinfo::DomainAddress{0, {at.bus, 0, 0}});
    slot.ports = {FormatAddress(at.port)};
    slot.link = link;
    slot.numaNode = static_cast<int>(at.port.address.bus >= kSecondSocket);
    facts_.machine.slots.push_back(std::move(slot));
  }

  /// Fills the machine up: the processors' own devices, on buses behind those of the slots.
  void AddProcessorDevices() {
    constexpr unsigned kPerBus = 256;
    constexpr unsigned kFirstBus = 0x40;
    for (unsigned i = 0; i < state_.processorDevices; ++i) {
      const unsigned n = i / 2;  // every second one belongs to the second processor
      const unsigned bus = kFirstBus + n / kPerBus + (i % 2 == 0 ? 0 : kSecondSocket);
      functions_.push_back(OnBoard(kProcessorDevices[n / 8 % kProcessorDevices.size()],
                                   {bus, n % kPerBus / 8, n % 8}));
    }
  }

  void Sort() {
    const auto address = [](const FleetFunction& entry) { return entry.function.address; };
    std::ranges::sort(functions_, {}, address);
    for (FleetFunction& entry : functions_) {
      if (entry.function.slot) {
        MachineSlot& slot = facts_.machine.slots[*entry.function.slot];
        slot.functions.push_back(facts_.machine.functions.size());
      }
      facts_.machine.functions.push_back(std::move(entry.function));
      facts_.functions.push_back(std::move(entry.facts));
    }
    facts_.machine.LinkParts();
  }

  const MachineState& state_;
  std::vector<FleetFunction> functions_;
  pciinfo::MachineFacts facts_;
};

pciinfo::MachineIdentity IdentityOf(const MachineState& state) {
  const MachineKind& kind = state.Kind();
  return {kind.maker,
          kind.product,
          kind.maker,
          "Board " + kind.product,
          "A02",
          kind.maker,
          fmt::format("2.{}.{}", state.bios, state.kind),
          fmt::format("{:02}/01/2025", 1 + state.bios % 12)};
}

/// Each machine at its own second of the first hour of a week that begins on a Monday.
std::string CollectedAt(const FleetPlan& plan, std::size_t number) {
  using namespace std::chrono;
  const sys_seconds first = sys_days(year(2026) / January / 5) + hours(6);
  const sys_seconds time = first + days(7 * plan.week) + seconds(number % 3600);
  const auto day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss clock(time - day);
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", int(date.year()),
                     unsigned(date.month()), unsigned(date.day()), clock.hours().count(),
                     clock.minutes().count(), clock.seconds().count());
}

pciinfo::MachineStamp StampOf(const FleetPlan& plan, std::size_t number) {
  Random random{plan.seed, number, 0x1d};
  const std::uint64_t high = random.Next();
  const std::uint64_t low = random.Next();
  pciinfo::MachineStamp stamp;
  stamp.systemName =
      fmt::format("row{:02}-rack{:02}-unit{:02}", number / 800, number / 40 % 20, number % 40 + 1);
  stamp.ids.systemUuid =
      fmt::format("{:08x}-{:04x}-4{:03x}-8{:03x}-{:012x}", high >> 32U, high >> 16U & 0xffffU,
                  high & 0xfffU, low >> 52U, low & 0xffffffffffffU);
  stamp.ids.machineId = fmt::format("{:016x}{:016x}", random.Next(), random.Next());
  stamp.collected = CollectedAt(plan, number);
  return stamp;
}

}  // namespace

pciinfo::CollectedMachine CollectedOf(const FleetPlan& plan, const MachineState& state) {
  pciinfo::CollectedMachine machine;
  machine.stamp = StampOf(plan, state.number);
  machine.identity = IdentityOf(state);
  machine.facts = MachineBuilder(state).Build();
  machine.findings = pciinfo::FindWith(pciinfo::MachineChecks(), machine.facts);
  if (!state.isReadable) machine.troubles = {"the SMBIOS tables cannot be read: run as root"};
  machine.notRead = machine.troubles;
  return machine;
}

}  // namespace bench
