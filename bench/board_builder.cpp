// SPDX-License-Identifier: Apache-2.0
#include "bench/board_builder.h"

#include <fmt/format.h>

namespace bench {
namespace {

using nlohmann::json;

constexpr unsigned kFirstFillBus = 0xF0;  // the buses from here on hold devices of processors
constexpr unsigned kPortsOfRootBus = 24;
constexpr unsigned kExpressAt = 0x90;  // the PCI Express capability of ports, see device_kinds.cpp

constexpr DeviceKind kConventionalBridge = {
    "8086", "244e", "0604", "01", "", 1, Capabilities::kConventional, false};

/// The digits of a little-endian number.
std::string Digits(std::uint32_t value, unsigned bytes) {
  std::string digits;
  for (unsigned i = 0; i < bytes; ++i) digits += fmt::format("{:02x}", value >> 8 * i & 0xFF);
  return digits;
}

void Patch(json& function, unsigned offset, const std::string& digits) {
  function["patches"].push_back({{"at", offset}, {"bytes", digits}});
}

std::string RecipeText(const FunctionPlace& at) {
  return at.domain == 0 ? at.Text().substr(5) : at.Text();
}

}  // namespace

std::string FunctionPlace::Text() const {
  return fmt::format("{:04x}:{:02x}:{:02x}.{}", domain, bus, device, function);
}

BoardBuilder::BoardBuilder() {
  structures_.push_back(
      {{"bios", {{"vendor", "Firmware Works"}, {"version", "3.4"}, {"date", "01/15/2023"}}}});
  plan_.truth = {{"slots", json::object()}, {"shared", json::array()}};
  BeginRootBus();
}

void BoardBuilder::BeginDomain() {
  ++domain_;
  nextBus_ = 0;
  BeginRootBus();
}

void BoardBuilder::BeginRootBus() {
  rootBus_ = nextBus_++;
  ports_ = 0;
  AddFunction(HostBridge(), {domain_, rootBus_, 0, 0});
}

FunctionPlace BoardBuilder::NewPort(unsigned buses) {
  if (nextBus_ + buses + 1 >= kFirstFillBus) {
    BeginDomain();
  } else if (ports_ == kPortsOfRootBus) {
    BeginRootBus();
  }
  const unsigned port = ports_++;
  return {domain_, rootBus_, 1 + port / 4, port % 4};
}

json& BoardBuilder::Append(const DeviceKind& kind, const FunctionPlace& at) {
  json function = {{"address", RecipeText(at)}, {"vendor", kind.vendor},
                   {"device", kind.device},     {"class", kind.classCode},
                   {"progIf", kind.progIf},     {"revision", 1},
                   {"driver", kind.driver},     {"configSize", SizeOf(kind.capabilities)},
                   {"patches", json::array()}};
  for (const ConfigurationPatch& patch : PatchesOf(kind.capabilities)) {
    Patch(function, patch.offset, patch.bytes);
  }
  return functions_.emplace_back(std::move(function));
}

std::string BoardBuilder::AddBridge(BridgeKind kind, const FunctionPlace& at, unsigned first,
                                    unsigned last, int slotNumber) {
  const bool isConventional = kind == BridgeKind::kConventional;
  json& bridge = Append(isConventional ? kConventionalBridge : RootPort(), at);
  bridge["headerType"] = 0x81;
  bridge["buses"] = {at.bus, first, last};
  if (isConventional) return at.Text();
  const unsigned slotBit = slotNumber == kNoSlot ? 0 : 0x100;
  const unsigned number = slotNumber == kNoSlot ? 0 : static_cast<unsigned>(slotNumber);
  Patch(bridge, kExpressAt + 2, Digits(2 | static_cast<unsigned>(kind) << 4 | slotBit, 2));
  Patch(bridge, kExpressAt + 0x14, Digits(number << 19, 4));
  return at.Text();
}

std::string BoardBuilder::AddFunction(const DeviceKind& kind, const FunctionPlace& at) {
  json& function = Append(kind, at);
  function["headerType"] = 0x80;
  function["subsystem"] = {"f1a5", "0001"};
  nextAddress_ += 0x10000;
  function["regions"] = {{{"memory", nextAddress_}, {"size", 0x10000}, {"flags", 4}}, nullptr};
  return at.Text();
}

BoardBuilder::Texts BoardBuilder::AddCard(unsigned domain, unsigned bus, unsigned device) {
  const DeviceKind& kind = Cards()[nextCard_++ % Cards().size()];
  Texts functions;
  for (unsigned function = 0; function < kind.functions; ++function) {
    functions.push_back(AddFunction(kind, {domain, bus, device, function}));
  }
  return functions;
}

json& BoardBuilder::NewRecord(const FunctionPlace* at, bool isInUse) {
  // Some firmware pads its texts.
  const char* const blanks = nextId_ % 3 == 0 ? "  " : "";
  json record = {{"designation", fmt::format("Slot {}{}", nextId_, blanks)},
                 {"type", "b6"},
                 {"width", "0d"},
                 {"usage", isInUse ? 4 : 3},
                 {"length", 4},
                 {"id", nextId_++},
                 {"characteristics", {"0c", "01"}},
                 {"structureLength", at != nullptr ? 17 : 13}};
  if (at != nullptr) {
    record["segment"] = at->domain;
    record["bus"] = at->bus;
    record["device"] = at->device;
    record["function"] = at->function;
  }
  return structures_.emplace_back(json{{"slot", std::move(record)}})["slot"];
}

json& BoardBuilder::AddRecord(const FunctionPlace* at, const Texts& functions) {
  if (!functions.empty()) plan_.truth["slots"][fmt::format("Slot {}", nextId_)] = functions;
  return NewRecord(at, !functions.empty());
}

std::string BoardBuilder::AddSharingRecord(const FunctionPlace& at) {
  std::string name = fmt::format("Slot {}", nextId_);
  NewRecord(&at, true);
  return name;
}

void BoardBuilder::Share(const Texts& slots, const Texts& functions) {
  plan_.truth["shared"].push_back({{"slots", slots}, {"functions", functions}});
}

void BoardBuilder::AddOnBoardRecord(const FunctionPlace& at) {
  const auto handle = static_cast<unsigned>(0x2900 + structures_.size());
  const std::string fields = "290b" + Digits(handle, 2) + "018501" + Digits(at.domain, 2) +
                             Digits(at.bus, 1) + Digits(at.device << 3 | at.function, 1);
  structures_.push_back({{"raw", fields + "4c414e0000"}});  // "LAN"
}

void BoardBuilder::AddKernelSlot(unsigned number, const FunctionPlace& at) {
  plan_.kernelSlots[std::to_string(number)] = at.Text().substr(0, at.Text().find('.'));
}

void BoardBuilder::AddUserNumber(unsigned number, const std::string& function) {
  plan_.userNumbers[function] = number;
}

void BoardBuilder::FillTo(std::size_t functions) {
  for (unsigned place = 0; functions_.size() < functions; ++place) {
    const unsigned bus = kFirstFillBus + place / 256;
    AddFunction(ProcessorDevices()[place % ProcessorDevices().size()],
                {domain_, bus, place / 8 % 32, place % 8});
  }
}

BoardPlan BoardBuilder::Take() {
  plan_.recipe = {
      {"about", "A machine with slots of every kind."},
      {"pci", std::move(functions_)},
      {"smbios",
       {{"anchor", "_SM3_"}, {"version", "3.4"}, {"structures", std::move(structures_)}}}};
  return std::move(plan_);
}

}  // namespace bench
