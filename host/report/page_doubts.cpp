// SPDX-License-Identifier: Apache-2.0
#include "host/report/page_doubts.h"

#include <fmt/format.h>

#include <string>
#include <utility>
#include <vector>

#include "host/console/text.h"
#include "host/machine/cards.h"
#include "host/views/place_texts.h"

namespace pciinfo {
namespace {

using Sentences = std::vector<std::string>;

Sentences SharedPorts(const MachineModel& machine) {
  Sentences sentences;
  for (const SharedPort& shared : machine.shared) {
    for (const Card& card : CardsOf(machine.FunctionsOf(shared.functions), machine.HasDomains())) {
      sentences.push_back(fmt::format("{} at {}: {}; {}", card.text, card.addresses.front(),
                                      SharedTitle(shared, machine), Printable(shared.evidence)));
    }
  }
  return sentences;
}

Sentences UnknownPlaces(const MachineModel& machine) {
  std::vector<std::pair<std::string, std::string>> reasons;
  for (const MachineFunction* function : machine.FunctionsAt(FunctionPlace::kUnknown)) {
    if (IsBridgeOrChipset(*function)) continue;
    reasons.emplace_back(AddressText(function->address, machine.HasDomains()),
                         Printable(function->placeReason));
  }
  return GroupedByReason(reasons);
}

void WriteList(Markup& markup, const char* title, const Sentences& sentences) {
  if (sentences.empty()) return;
  markup.Element("h3", {}, title);
  markup.Open("ul");
  for (const std::string& sentence : sentences) {
    markup.Open("li");
    markup.Text(sentence);
    markup.CloseLine();
  }
  markup.CloseLine();
}

}  // namespace

void WriteDoubts(Markup& markup, const Overview& overview) {
  const MachineModel& machine = overview.machine;
  const std::vector<std::pair<const char*, Sentences>> lists = {
      {"Cards in one of several slots", SharedPorts(machine)},
      {"Contradictions", Contradictions(machine)},
      {"Slots that lead nowhere", Unmatched(machine)},
      {"Functions of which the place is not known", UnknownPlaces(machine)},
      {"What could not be read", overview.notRead}};
  bool isClear = true;
  for (const auto& [title, sentences] : lists) {
    WriteList(markup, title, sentences);
    isClear = isClear && sentences.empty();
  }
  if (isClear) markup.Element("p", {}, "Nothing is in doubt.");
}

}  // namespace pciinfo
