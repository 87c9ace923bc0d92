// SPDX-License-Identifier: Apache-2.0
#include "topology/pci_names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <initializer_list>

namespace topology {
namespace {

/// The front line of `text`, which is removed with its line end.
std::string_view TakeLine(std::string_view& text) {
  const std::size_t end = std::min(text.find('\n'), text.size());
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return line;
}

/// What follows an ID: the name, without the blanks before it.
std::string_view NameIn(std::string_view line, std::size_t idSize) {
  line.remove_prefix(std::min(idSize, line.size()));
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  return line;
}

std::optional<unsigned> Id(std::string_view line, std::size_t digits) {
  unsigned id = 0;
  if (line.size() < digits) return std::nullopt;
  const auto [stop, error] = std::from_chars(line.data(), line.data() + digits, id, 16);
  if (error != std::errc() || stop != line.data() + digits) return std::nullopt;
  return id;
}

/// The front of a line: the tabs, then each ID with its digits and a blank.
std::string Front(std::size_t tabs, int digits, std::initializer_list<unsigned> ids) {
  std::string front(tabs, '\t');
  for (const unsigned id : ids) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%0*x ", digits, id);
    front += text.data();
  }
  return front;
}

bool IsIndented(std::string_view line, std::size_t tabs) {
  return line.size() >= tabs &&
         std::all_of(line.begin(), line.begin() + tabs, [](char c) { return c == '\t'; });
}

/// Removes the front lines of `text` that are indented by `tabs` or more, and returns them.
/// Comments may stand in any line.
std::string_view TakeIndented(std::string_view& text, std::size_t tabs) {
  std::size_t end = 0;
  while (end < text.size() && (text[end] == '#' || IsIndented(text.substr(end), tabs))) {
    end = std::min(text.find('\n', end), text.size() - 1) + 1;
  }
  const std::string_view lines = text.substr(0, end);
  text.remove_prefix(end);
  return lines;
}

}  // namespace

PciNames::PciNames(std::string text) : text_(std::move(text)) {
  std::string_view rest = text_;
  while (!rest.empty()) {
    const std::string_view line = TakeLine(rest);
    const bool isClass = line.starts_with("C ");
    const auto id = isClass ? Id(line.substr(2), 2) : Id(line, 4);
    if (!id) continue;
    const Block block{NameIn(line, 4), TakeIndented(rest, 1)};
    (isClass ? classes_ : vendors_).emplace(*id, block);
  }
}

PciNames::Devices PciNames::DevicesIn(std::string_view lines) {
  Devices devices;
  for (std::string_view rest = lines; !rest.empty();) {
    const std::size_t offset = lines.size() - rest.size();
    const std::string_view line = TakeLine(rest);
    const auto id = IsIndented(line, 1) ? Id(line.substr(1), 4) : std::nullopt;
    if (id && line.substr(5).starts_with(' ')) devices.emplace_back(*id, offset);
    TakeIndented(rest, 2);
  }
  return devices;
}

/// Finds the line that begins with `indented`, which holds the tabs and the ID.
std::optional<PciNames::Block> PciNames::FindIn(std::string_view lines, std::string_view indented) {
  const std::size_t tabs = indented.find_first_not_of('\t') + 1;
  while (!lines.empty()) {
    const std::string_view line = TakeLine(lines);
    if (!line.starts_with(indented)) continue;
    return Block{NameIn(line, indented.size()), TakeIndented(lines, tabs)};
  }
  return std::nullopt;
}

const PciNames::Block* PciNames::FindVendor(std::uint16_t vendor) const {
  const auto found = vendors_.find(vendor);
  return found == vendors_.end() ? nullptr : &found->second;
}

std::optional<PciNames::Block> PciNames::FindDevice(std::uint16_t vendor,
                                                    std::uint16_t device) const {
  const Block* const block = FindVendor(vendor);
  if (block == nullptr) return std::nullopt;
  const auto [devices, isNew] = devices_.try_emplace(vendor);
  if (isNew) devices->second = DevicesIn(block->lines);
  for (const auto& [id, offset] : devices->second) {
    if (id != device) continue;
    std::string_view rest = block->lines.substr(offset);
    const std::string_view line = TakeLine(rest);
    return Block{NameIn(line, 6), TakeIndented(rest, 2)};
  }
  return std::nullopt;
}

std::string_view PciNames::Vendor(std::uint16_t vendor) const {
  const Block* const block = FindVendor(vendor);
  return block == nullptr ? std::string_view() : block->name;
}

std::string_view PciNames::Device(std::uint16_t vendor, std::uint16_t device) const {
  return FindDevice(vendor, device).value_or(Block()).name;
}

std::string_view PciNames::Subsystem(std::uint16_t vendor, std::uint16_t device,
                                     std::uint16_t subsystemVendor, std::uint16_t subsystem) const {
  const auto found = FindDevice(vendor, device);
  if (!found) return {};
  const auto exact = FindIn(found->lines, Front(2, 4, {subsystemVendor, subsystem}));
  if (exact) return exact->name;
  const bool isSame = vendor == subsystemVendor && device == subsystem;
  return isSame ? found->name : std::string_view();
}

std::string_view PciNames::Class(std::uint32_t classCode) const {
  const auto base = classes_.find(classCode >> 16 & 0xFF);
  if (base == classes_.end()) return {};
  const auto subclass = FindIn(base->second.lines, Front(1, 2, {classCode >> 8 & 0xFF}));
  return subclass ? subclass->name : base->second.name;
}

std::string_view PciNames::ProgrammingInterface(std::uint32_t classCode) const {
  const auto base = classes_.find(classCode >> 16 & 0xFF);
  if (base == classes_.end()) return {};
  const auto subclass = FindIn(base->second.lines, Front(1, 2, {classCode >> 8 & 0xFF}));
  if (!subclass) return {};
  return FindIn(subclass->lines, Front(2, 2, {classCode & 0xFF})).value_or(Block()).name;
}

}  // namespace topology
