// SPDX-License-Identifier: Apache-2.0
#include "host/report/item_title.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <vector>

namespace pciinfo {
namespace {

std::string LinkWords(const PartLink& link) {
  std::string words = link.widthText;
  if (!link.speedText.empty()) words += (words.empty() ? "" : ", ") + link.speedText;
  if (words.empty()) return "";
  return (link.isNarrow ? "narrow link " : "link ") + words;
}

std::string WithRemark(const std::string& text, const std::string& remark) {
  return remark.empty() ? text : fmt::format("{} ({})", text, remark);
}

void AddWords(std::vector<std::string>& words, const std::string& more) {
  if (!more.empty()) words.push_back(more);
}

std::string PortWords(const Part& part) {
  if (part.address.empty()) return "";
  return fmt::format("{} {}", part.count == 1 ? "port" : "ports", part.address);
}

std::string CardWords(const Part& part) {
  const std::string name = CountedName(part);
  return part.address.empty() ? name : fmt::format("{} at {}", name, part.address);
}

}  // namespace

std::string CountedName(const Part& part) {
  return part.count == 1 ? part.name : fmt::format("{} x {}", part.count, part.name);
}

std::string ItemTitle(const Part& part) {
  if (part.kind != PartKind::kPort && part.kind != PartKind::kSlot) return CardWords(part);
  std::vector<std::string> words;
  if (!part.slot.empty()) words.push_back(WithRemark(part.slot, part.remark));
  if (part.behind.empty()) AddWords(words, part.state);
  for (const Part& inner : part.behind) {
    if (inner.kind != PartKind::kGroup) words.push_back(CardWords(inner));
  }
  if (part.link) AddWords(words, LinkWords(*part.link));
  AddWords(words, PortWords(part));
  return fmt::format("{}", fmt::join(words, "; "));
}

}  // namespace pciinfo
