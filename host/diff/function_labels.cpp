// SPDX-License-Identifier: Apache-2.0
#include "host/diff/function_labels.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace pciinfo {
namespace {

bool AreOfOneDevice(DomainAddress left, DomainAddress right) {
  left.address.function = right.address.function;
  return left == right;
}

/// The number of addresses from `first` on that follow each other in one device.
std::size_t RunLength(const std::vector<DomainAddress>& addresses, std::size_t first) {
  std::size_t end = first + 1;
  while (end < addresses.size() && AreOfOneDevice(addresses[end], addresses[first]) &&
         addresses[end].address.function == addresses[end - 1].address.function + 1) {
    ++end;
  }
  return end - first;
}

}  // namespace

std::string CardsLabel(const FunctionList& functions, const MachineModel& machine) {
  constexpr std::size_t kMost = 2;
  const std::vector<Card> cards = CardsOf(functions, machine.HasDomains());
  if (cards.size() == 1) return cards.front().text;
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < cards.size() && i < kMost; ++i) texts.push_back(cards[i].text);
  if (cards.size() > kMost) texts.push_back(fmt::format("{} more models", cards.size() - kMost));
  return fmt::format("{}", fmt::join(texts, "; "));
}

ShownAddresses ShowAddresses(const std::vector<DomainAddress>& addresses, bool hasDomains) {
  constexpr std::size_t kMost = 8;
  std::vector<std::string> texts;
  std::size_t shown = 0;
  while (shown < addresses.size() && texts.size() < kMost) {
    const std::size_t length = RunLength(addresses, shown);
    std::string text = AddressText(addresses[shown], hasDomains);
    shown += length;
    if (length > 1) text += fmt::format("-{:x}", addresses[shown - 1].address.function);
    texts.push_back(std::move(text));
  }
  const bool isWhole = shown == addresses.size();
  if (!isWhole) texts.push_back(fmt::format("and {} more", addresses.size() - shown));
  return {fmt::format("{}", fmt::join(texts, ", ")), isWhole};
}

}  // namespace pciinfo
