// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "host/report/parts.h"

namespace pciinfo {
namespace {

constexpr std::size_t kLeastFolded = 3;

bool ShowSameLink(const std::optional<PartLink>& one, const std::optional<PartLink>& other) {
  if (!one || !other) return one.has_value() == other.has_value();
  return one->widthText == other->widthText && one->speedText == other->speedText &&
         one->isNarrow == other->isNarrow && one->possible == other->possible;
}

bool ShowSame(const Part& one, const Part& other) {
  return one.kind == other.kind && one.name == other.name && one.remark == other.remark &&
         one.state == other.state && one.isEmpty == other.isEmpty &&
         one.isDoubtful == other.isDoubtful && one.isNamed == other.isNamed &&
         one.slot.empty() == other.slot.empty() && one.count == other.count &&
         ShowSameLink(one.link, other.link) &&
         std::equal(one.behind.begin(), one.behind.end(), other.behind.begin(), other.behind.end(),
                    &ShowSame);
}

/// "first ... last"; what was merged before keeps its first.
std::string FirstAndLast(const std::string& text, const std::string& last) {
  constexpr std::string_view kBetween = " \u2026 ";
  std::string first = text.substr(0, text.find(kBetween));
  const std::size_t inside = last.rfind(kBetween);
  const std::string end =
      inside == std::string::npos ? last : last.substr(inside + kBetween.size());
  if (first.empty() || end.empty() || first == end) return first;
  return fmt::format("{}{}{}", first, kBetween, end);
}

void Merge(Part& part, const Part& other) {
  part.count += other.count;
  part.address = FirstAndLast(part.address, other.address);
  part.slot = FirstAndLast(part.slot, other.slot);
  part.functions.insert(part.functions.end(), other.functions.begin(), other.functions.end());
  part.slots.insert(part.slots.end(), other.slots.begin(), other.slots.end());
  for (std::size_t i = 0; i < part.behind.size(); ++i) Merge(part.behind[i], other.behind[i]);
}

void FoldNeighbours(std::vector<Part>& parts) {
  std::vector<Part> folded;
  for (Part& part : parts) FoldNeighbours(part.behind);
  for (std::size_t start = 0; start < parts.size();) {
    std::size_t end = start + 1;
    while (end < parts.size() && ShowSame(parts[start], parts[end])) ++end;
    if (end - start < kLeastFolded) end = start + 1;
    for (std::size_t i = start + 1; i < end; ++i) Merge(parts[start], parts[i]);
    folded.push_back(std::move(parts[start]));
    start = end;
  }
  parts = std::move(folded);
}

std::size_t CountOf(const std::vector<Part>& parts) {
  std::size_t count = parts.size();
  for (const Part& part : parts) count += CountOf(part.behind);
  return count;
}

}  // namespace

std::size_t CountParts(const std::vector<PartGroup>& groups) {
  std::size_t count = 0;
  for (const PartGroup& group : groups) count += CountOf(group.parts);
  return count;
}

void FoldParts(std::vector<PartGroup>& groups) {
  for (PartGroup& group : groups) FoldNeighbours(group.parts);
}

}  // namespace pciinfo
