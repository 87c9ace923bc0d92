// SPDX-License-Identifier: Apache-2.0
#include "bench/fleet/card_functions.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace bench {
namespace {

using pciinfo::FunctionFacts;
using pciinfo::MachineFunction;

/// "02-00-5e-ff-ff-12-34-56": of the configuration space.
std::string DeviceSerial(std::uint64_t serial) {
  return fmt::format("02-00-5e-ff-ff-{:02x}-{:02x}-{:02x}", serial & 0xffU, serial >> 8U & 0xffU,
                     serial >> 16U & 0xffU);
}

/// "S5G3NX0012ABCDEF": as makers print it on the card.
std::string PrintedSerial(std::uint64_t serial) { return fmt::format("S{:015X}", serial >> 4U); }

/// Local addresses, unique in the fleet: 24 bits for the machine, 16 for slot and function.
std::string HardwareAddress(const CardPlace& place, unsigned function) {
  return fmt::format("02:{:02x}:{:02x}:{:02x}:{:02x}:{:02x}", place.machine >> 16U & 0xffU,
                     place.machine >> 8U & 0xffU, place.machine & 0xffU, place.slot & 0xffU,
                     function);
}

std::string FirmwareOf(const InstalledCard& card) {
  const CardModel& model = CardModels()[card.model];
  if (model.IsDrive()) return fmt::format("{:04X}{}Q", model.deviceId, card.firmware);
  return fmt::format("{}.{}.1010", 16 + model.deviceId % 8, 30 + card.firmware);
}

std::vector<pciinfo::SystemDevice> DevicesOf(const InstalledCard& card, const CardPlace& place,
                                             unsigned function) {
  const CardModel& model = CardModels()[card.model];
  const std::string network = fmt::format("ens{}f{}", place.slot + 1, function);
  const std::string address = HardwareAddress(place, function);
  const std::string firmware = FirmwareOf(card);
  switch (model.use) {
    case CardUse::kNetwork:
      return {{"network", network, address, "", "", ""}};
    case CardUse::kInfiniband:
      return {{"infiniband", fmt::format("mlx5_{}_{}", place.slot, function), "", "", "", firmware},
              {"network", "ib" + network.substr(2), address, "", "", ""}};
    case CardUse::kNvme:
      return {{"block", fmt::format("nvme{}n1", place.slot), "", "", "", ""},
              {"nvme", fmt::format("nvme{}", place.slot), "",
               fmt::format("MODEL-{:04X}-{}T", model.deviceId, 1U << model.deviceId % 4),
               PrintedSerial(card.serial), firmware}};
    case CardUse::kStorage:
      return {{"scsi", fmt::format("host{}", place.slot), "", "", "", ""}};
    case CardUse::kGraphics:
      return {{"drm", fmt::format("card{}", place.slot), "", "", "", ""}};
    case CardUse::kOther:
      break;
  }
  return {};
}

FunctionFacts FactsOf(const InstalledCard& card, const CardPlace& place, unsigned function) {
  const CardModel& model = CardModels()[card.model];
  FunctionFacts facts;
  facts.powerState = "D0";
  facts.modules = {model.driver};
  facts.serialNumber = DeviceSerial(card.serial);
  facts.systemDevices = DevicesOf(card, place, function);
  if (!model.IsDrive()) {
    facts.productName = model.device;
    facts.partNumber = fmt::format("PN-{:04X}-{:04X}", model.vendorId, model.deviceId);
    facts.productSerialNumber = PrintedSerial(card.serial);
  }
  if (function != 0 || card.errors == 0) return facts;
  facts.corrected = {card.errors, {fmt::format("BadTLP {}", card.errors)}};
  return facts;
}

void SetIds(MachineFunction& function, const CardModel& model) {
  function.vendorId = function.subsystemVendorId = model.vendorId;
  function.deviceId = model.deviceId;
  function.subsystemId = model.subsystemId;
  function.baseClass = model.baseClass;
  function.subclass = model.subclass;
  function.programmingInterface = model.IsDrive() ? 2 : 0;
  function.revision = 1;
  function.vendorName = function.subsystemVendorName = model.vendor;
  function.deviceName = model.device;
  function.className = model.className;
  function.headerType = 0;
}

void SetLink(MachineFunction& function, const InstalledCard& card, const CardPlace& place) {
  const CardModel& model = CardModels()[card.model];
  const unsigned width = std::min(model.lanes, place.lanes);
  function.portType = "endpoint";
  function.parentPort = place.port;
  function.link = {card.isNarrow ? width / 2 : width,
                   SpeedOf(std::min(model.generation, place.generation)), model.lanes,
                   SpeedOf(model.generation)};
}

MachineFunction FunctionOf(const InstalledCard& card, const CardPlace& place, unsigned number) {
  const CardModel& model = CardModels()[card.model];
  MachineFunction function;
  function.address = {0, {place.bus, 0, number}};
  SetIds(function, model);
  SetLink(function, card, place);
  if (card.hasDriver) function.driver = model.driver;
  function.numaNode = static_cast<int>(place.port.address.bus >= 0x80);
  function.place = pciinfo::FunctionPlace::kSlot;
  function.slot = place.slot;
  function.certainty = "certain";
  function.evidence =
      fmt::format("SMBIOS record {:#06x} names {} behind port {}; {} is behind it",
                  0x100 + place.slot, FormatAddress(pciinfo::DomainAddress{0, {place.bus, 0, 0}}),
                  FormatAddress(place.port), FormatAddress(function.address));
  function.placeReason = function.evidence;
  return function;
}

}  // namespace

std::vector<FleetFunction> FunctionsOfCard(const InstalledCard& card, const CardPlace& place) {
  std::vector<FleetFunction> functions;
  functions.reserve(CardModels()[card.model].functions);
  for (unsigned number = 0; number < CardModels()[card.model].functions; ++number) {
    functions.push_back({FunctionOf(card, place, number), FactsOf(card, place, number)});
  }
  return functions;
}

std::string SpeedOf(unsigned generation) {
  constexpr std::array kSpeeds = {"2.5", "5.0", "8.0", "16.0", "32.0"};
  return fmt::format("{} GT/s", kSpeeds.at(generation - 1));
}

}  // namespace bench
