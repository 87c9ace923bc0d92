// SPDX-License-Identifier: Apache-2.0
#include "host/machine/cards.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <iterator>
#include <map>

#include "host/machine/names.h"

namespace pciinfo {
namespace {

/// Functions on a root bus are parts of the chip set: each is a device of its own.
DomainAddress DeviceOf(const MachineFunction& function) {
  DomainAddress address = function.address;
  if (function.parentPort) address.address.function = 0;
  return address;
}

/// The functions of one device, and the virtual functions of these.
struct Device {
  FunctionList functions;
  FunctionList virtualFunctions;
};

std::vector<Device> DevicesOf(const FunctionList& functions) {
  std::map<DomainAddress, Device> devices;
  std::map<DomainAddress, DomainAddress> deviceOf;
  for (const MachineFunction* function : functions) {
    if (function->physicalFunction) continue;
    deviceOf[function->address] = DeviceOf(*function);
    devices[DeviceOf(*function)].functions.push_back(function);
  }
  for (const MachineFunction* function : functions) {
    if (!function->physicalFunction) continue;
    // Where the physical function is not among them, as behind a filter, the virtual one stands for
    // itself.
    const auto owner = deviceOf.find(*function->physicalFunction);
    if (owner == deviceOf.end()) {
      devices[function->address].functions.push_back(function);
    } else {
      devices[owner->second].virtualFunctions.push_back(function);
    }
  }
  std::vector<Device> list;
  list.reserve(devices.size());
  for (auto& [address, device] : devices) list.push_back(std::move(device));
  return list;
}

/// "01:00.0-3" for functions with consecutive numbers, else "01:00.0, .2".
std::string FunctionNumbersText(const FunctionList& functions, bool hasDomains) {
  std::string text = AddressText(functions.front()->address, hasDomains);
  for (std::size_t i = 1; i < functions.size();) {
    std::size_t end = i;
    const auto number = [&](std::size_t at) { return functions[at]->address.address.function; };
    while (end < functions.size() && number(end) == number(i - 1) + (end - i) + 1) ++end;
    if (end > i) {
      text += fmt::format("-{:x}", number(end - 1));
      i = end;
    } else {
      text += fmt::format(",{:x}", number(i));
      ++i;
    }
  }
  return text;
}

/// The kind of a further function if it differs from the first's, as the audio of a graphics card;
/// else its model.
std::string FurtherText(const MachineFunction& first, const MachineFunction& further) {
  std::string kind = KindWord(further);
  return kind.empty() || kind == KindWord(first) ? ModelText(further) : kind;
}

/// What the functions of a device are, each text once.
std::string DeviceText(const Device& device) {
  const MachineFunction& first = *device.functions.front();
  std::vector<std::string> texts = {ModelText(first)};
  for (const MachineFunction* function : device.functions) {
    std::string text = FurtherText(first, *function);
    const bool isKnown = std::find(texts.begin(), texts.end(), text) != texts.end();
    if (!isKnown) texts.push_back(std::move(text));
  }
  std::string text = fmt::format("{}", fmt::join(texts, " + "));
  const std::size_t count = device.virtualFunctions.size();
  if (count == 0) return text;
  return text + fmt::format(", {} virtual function{}", count, count == 1 ? "" : "s");
}

void Append(FunctionList& list, const FunctionList& more) {
  list.insert(list.end(), more.begin(), more.end());
}

}  // namespace

std::string AddressText(const DomainAddress& address, bool hasDomains) {
  return hasDomains ? FormatAddress(address) : FormatAddress(address.address);
}

bool IsBridgeOrChipset(const MachineFunction& function) {
  constexpr unsigned kBaseClasses[] = {0x05, 0x06, 0x08, 0x11};
  return function.IsBridge() ||
         std::any_of(std::begin(kBaseClasses), std::end(kBaseClasses),
                     [&function](unsigned code) { return function.baseClass == code; });
}

std::vector<Card> CardsOf(const FunctionList& functions, bool hasDomains) {
  FunctionList shown = functions;
  std::erase_if(shown, [](const MachineFunction* function) { return function->IsBridge(); });
  std::vector<Card> cards;
  std::map<std::string, std::size_t> places;  // in `cards`, by text
  for (const Device& device : DevicesOf(shown.empty() ? functions : shown)) {
    const std::string text = DeviceText(device);
    const auto [place, isNew] = places.try_emplace(text, cards.size());
    if (isNew) cards.push_back({{}, text, {}});
    Card& card = cards[place->second];
    card.addresses.push_back(FunctionNumbersText(device.functions, hasDomains));
    Append(card.functions, device.functions);
    Append(card.functions, device.virtualFunctions);
  }
  for (Card& card : cards) {
    const std::size_t count = card.addresses.size();
    if (count > 1) card.text = fmt::format("{} x {}", count, card.text);
  }
  return cards;
}

std::vector<std::string> AddressLines(const Card& card) {
  constexpr std::size_t kMost = 8;
  if (card.addresses.size() <= kMost) return card.addresses;
  std::vector<std::string> lines(card.addresses.begin(), card.addresses.begin() + kMost - 1);
  lines.push_back(fmt::format("+ {} more", card.addresses.size() - lines.size()));
  return lines;
}

}  // namespace pciinfo
